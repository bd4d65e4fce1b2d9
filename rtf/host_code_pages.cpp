#include "rtf/host_code_pages.h"

#include <climits>

namespace tnefrtf {

namespace {

struct CodePageCharset {
    uint32_t codePage;
    CharsetId charset;
};

// Every code page an RTF document may name that the host's charset table
// has a number for and that is read a byte or a pair at a time (not the
// stateful ISO-2022 forms, the UTF-16 and UTF-7 ones or the EUC forms with
// three-byte characters).
constexpr CodePageCharset kCodePageCharsets[] = {
    {932, 1},     {936, 2},     {950, 3},     {949, 4},     {1250, 5},    {1251, 6},
    {1252, 7},    {1253, 8},    {1254, 9},    {1255, 10},   {1256, 11},   {1257, 12},
    {1258, 13},   {28591, 14},  {28592, 15},  {28593, 16},  {28594, 17},  {28595, 18},
    {28596, 19},  {28597, 20},  {28598, 21},  {28599, 22},  {28604, 23},  {28605, 24},
    {437, 25},    {737, 26},    {775, 27},    {850, 28},    {851, 29},    {852, 30},
    {855, 31},    {857, 32},    {860, 33},    {861, 34},    {862, 35},    {863, 36},
    {864, 37},    {865, 38},    {866, 39},    {869, 40},    {874, 41},    {10000, 42},
    {37, 46},     {1026, 47},   {500, 48},    {875, 49},    {65001, 53},
};

// The host writes this for what it can't convert; it is read back as the
// code point of the same number, which no byte of a text code page gives.
constexpr uint8_t kHostReplacement = 0x1A;

}  // namespace

CharsetId charsetOfCodePage(uint32_t codePage) {
    for (const CodePageCharset& row : kCodePageCharsets) {
        if (row.codePage == codePage) return row.charset;
    }
    return kCharsetNone;
}

bool HostCodePageDecoder::decode(uint32_t codePage, std::string_view bytes, std::string& utf8) {
    CharsetId charset = charsetOfCodePage(codePage);
    if (charset == kCharsetNone || host_ == nullptr || host_->hostCharsetToCharset == nullptr ||
        bytes.size() > INT32_MAX / 4 - 4) {
        return false;
    }
    // Four bytes of UTF-8 at most for each byte in.
    buffer_.resize(bytes.size() * 4 + 4);
    HostText source{bytes.data(), static_cast<int32_t>(bytes.size())};
    HostTextBuffer target{buffer_.data(), static_cast<int32_t>(buffer_.size())};
    CharsetId saved = host_->currentCharset;
    host_->currentCharset = kCharsetUtf8;
    int32_t complete = host_->hostCharsetToCharset(host_, charset, &source, &target, kHostReplacement);
    host_->currentCharset = saved;
    if (complete == 0 || target.length < 0 || static_cast<size_t>(target.length) > buffer_.size()) {
        return false;
    }
    bool sourceHasReplacement = bytes.find(static_cast<char>(kHostReplacement)) != std::string_view::npos;
    for (int32_t i = 0; i < target.length; ++i) {
        char c = buffer_[static_cast<size_t>(i)];
        if (c == static_cast<char>(kHostReplacement) && !sourceHasReplacement) {
            appendUtf8(utf8, 0xFFFD);
        } else {
            utf8 += c;
        }
    }
    return true;
}

bool HostCodePageDecoder::isLeadByte(uint32_t codePage, uint8_t byte) {
    CharsetId charset = charsetOfCodePage(codePage);
    return charset != kCharsetNone && host_ != nullptr && host_->hostIsLeadByte != nullptr &&
           host_->hostIsLeadByte(host_, byte, charset) != 0;
}

}  // namespace tnefrtf
