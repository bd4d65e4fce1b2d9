#include "stream/codepage.h"

namespace {

struct CodePageRow {
    uint32_t codePage;
    CharsetId charset;
};

constexpr CodePageRow kCodePages[] = {
    {874, kCharsetWindows874}, {932, kCharsetShiftJis}, {936, kCharsetGb2312},
    {949, kCharsetEucKr},      {950, kCharsetBig5},     {1250, 5},
    {1251, 6},                 {1252, 7},               {1253, 8},
    {1254, 9},                 {1255, 10},              {1256, 11},
    {1257, 12},                {1258, 13},
};

}  // namespace

CharsetId tnefCodePageToCharset(uint32_t codePage) {
    for (const CodePageRow& row : kCodePages) {
        if (row.codePage == codePage) return row.charset;
    }
    return kCharsetNone;
}
