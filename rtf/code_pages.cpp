#include "rtf/code_pages.h"

namespace tnefrtf {

namespace {

// Code page 1252 at 0x80..0x9F; unassigned bytes (0x81, 0x8D, 0x8F, 0x90,
// 0x9D) are 0. Everything else is ISO-8859-1.
constexpr char16_t kWindows1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

struct CharsetCodePage {
    int32_t charset;
    uint32_t codePage;
};

// The charsets of RTF's \fcharset that name a code page of their own.
constexpr CharsetCodePage kCharsetCodePages[] = {
    {2, kCodePageSymbol}, {77, 10000}, {78, 10001}, {79, 10003}, {80, 10008}, {81, 10002},
    {83, 10005}, {84, 10004}, {85, 10006}, {86, 10081}, {87, 10021}, {88, 10029},
    {89, 10007}, {128, 932}, {129, 949}, {130, 1361}, {134, 936}, {136, 950}, {161, 1253},
    {162, 1254}, {163, 1258}, {177, 1255}, {178, 1256}, {186, 1257}, {204, 1251},
    {222, 874}, {238, 1250}, {254, 437}, {255, 850},
};

}  // namespace

bool BuiltinCodePageDecoder::decode(uint32_t codePage, std::string_view bytes, std::string& utf8) {
    bool windows = codePage == kCodePageWindows1252;
    if (!windows && codePage != kCodePageLatin1) return false;
    for (char c : bytes) {
        auto byte = static_cast<uint8_t>(c);
        char32_t code = byte;
        if (windows && byte >= 0x80 && byte < 0xA0) {
            code = kWindows1252High[byte - 0x80];
            if (code == 0) code = 0xFFFD;
        }
        appendUtf8(utf8, code);
    }
    return true;
}

uint32_t codePageOfCharset(int32_t charset) {
    for (const CharsetCodePage& row : kCharsetCodePages) {
        if (row.charset == charset) return row.codePage;
    }
    return 0;
}

void appendUtf8(std::string& out, char32_t code) {
    if ((code >= 0xD800 && code < 0xE000) || code > 0x10FFFF) code = 0xFFFD;
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

}  // namespace tnefrtf
