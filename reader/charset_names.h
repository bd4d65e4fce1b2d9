// The names of the host's character sets, by CharsetId. Ids 1 to 94 each
// have a row; an id that the host numbers but doesn't name has an empty name
// (50, 58 to 65 and 70 to 93). The names are those an HTML document declares.
//
// Plain constant data with constexpr look-ups, so that both the module (no
// heap of its own) and the host and the tool include the same table.
#pragma once

#include <stdint.h>

#include "reader/host.h"

struct CharsetNameRow {
    CharsetId id;
    const char* name;
};

inline constexpr int32_t kCharsetNameCount = 94;

inline constexpr CharsetNameRow kCharsetNames[kCharsetNameCount] = {
    {1, "Shift_JIS"},     {2, "gb2312"},       {3, "big5"},         {4, "EUC-KR"},
    {5, "windows-1250"},  {6, "windows-1251"}, {7, "windows-1252"}, {8, "windows-1253"},
    {9, "windows-1254"},  {10, "windows-1255"}, {11, "windows-1256"}, {12, "windows-1257"},
    {13, "windows-1258"}, {14, "iso-8859-1"},  {15, "iso-8859-2"},  {16, "iso-8859-3"},
    {17, "iso-8859-4"},   {18, "iso-8859-5"},  {19, "iso-8859-6"},  {20, "iso-8859-7"},
    {21, "iso-8859-8"},   {22, "iso-8859-9"},  {23, "iso-8859-14"}, {24, "iso-8859-15"},
    {25, "cp437"},        {26, "cp737"},       {27, "cp775"},       {28, "cp850"},
    {29, "cp851"},        {30, "cp852"},       {31, "cp855"},       {32, "cp857"},
    {33, "cp860"},        {34, "cp861"},       {35, "cp862"},       {36, "cp863"},
    {37, "cp864"},        {38, "cp865"},       {39, "cp866"},       {40, "cp869"},
    {41, "windows-874"},  {42, "macdoc"},      {43, "windoc"},      {44, "stdenc"},
    {45, "pdfdoc"},       {46, "cp037"},       {47, "cp1026"},      {48, "cp500"},
    {49, "cp875"},        {50, ""},            {51, "iso-10646"},   {52, "utf-16"},
    {53, "utf-8"},        {54, "utf-7"},       {55, "iso-2022-jp"}, {56, "iso-2022-cn"},
    {57, "iso-2022-kr"},  {58, ""},            {59, ""},            {60, ""},
    {61, ""},             {62, ""},            {63, ""},            {64, ""},
    {65, ""},             {66, "x-euc-jp"},    {67, "x-euc-gb"},    {68, "x-euc-big5"},
    {69, "x-euc-ksc"},    {70, ""},            {71, ""},            {72, ""},
    {73, ""},             {74, ""},            {75, ""},            {76, ""},
    {77, ""},             {78, ""},            {79, ""},            {80, ""},
    {81, ""},             {82, ""},            {83, ""},            {84, ""},
    {85, ""},             {86, ""},            {87, ""},            {88, ""},
    {89, ""},             {90, ""},            {91, ""},            {92, ""},
    {93, ""},             {94, "gb18030"},
};

// The table's name of `id`: "" for an id outside 1..94 and for an id
// without a name.
inline constexpr const char* tnefCharsetName(CharsetId id) {
    return (id >= 1 && id <= kCharsetNameCount) ? kCharsetNames[id - 1].name : "";
}

inline constexpr char tnefAsciiLower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// Compares two terminated names, ASCII letters without regard to case.
inline constexpr bool tnefSameCharsetName(const char* a, const char* b) {
    for (;; ++a, ++b) {
        if (tnefAsciiLower(*a) != tnefAsciiLower(*b)) return false;
        if (*a == '\0') return true;
    }
}

// The id whose name is `name` (ASCII case ignored); 0 for a null or empty
// name and for a name not in the table.
inline constexpr CharsetId tnefCharsetByName(const char* name) {
    if (name == nullptr || name[0] == '\0') return kCharsetNone;
    for (const CharsetNameRow& row : kCharsetNames) {
        if (tnefSameCharsetName(row.name, name)) return row.id;
    }
    return kCharsetNone;
}

// Every row stands at its id minus 1.
inline constexpr bool tnefCharsetRowsInOrder() {
    for (int32_t i = 0; i < kCharsetNameCount; ++i) {
        if (kCharsetNames[i].id != i + 1) return false;
    }
    return true;
}
static_assert(tnefCharsetRowsInOrder(), "charset name rows must stand at id - 1");
