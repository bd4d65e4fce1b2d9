#include "host/charset_codecs.h"

#include <array>

namespace tnefhost {

namespace {

using ByteTable = std::array<char16_t, 256>;

struct ByteMapping {
    uint8_t byte;
    char16_t code;
};

// A byte table: C0 controls and printable ASCII stand for themselves, DEL and
// the high half are unassigned until `rows` say otherwise.
template <size_t N>
constexpr ByteTable buildByteTable(const ByteMapping (&rows)[N], bool latin1High) {
    ByteTable table{};
    for (size_t b = 0; b < 256; ++b) {
        bool identity = b < 0x7F || (latin1High && b >= 0xA0);
        table[b] = identity ? static_cast<char16_t>(b) : kUnassigned;
    }
    for (const ByteMapping& row : rows) table[row.byte] = row.code;
    return table;
}

// Adobe StandardEncoding: ASCII with curly single quotes at 0x27 and 0x60, and
// a sparse upper half of punctuation, accents and ligatures.
constexpr ByteMapping kStandardEncodingRows[] = {
    {0x27, 0x2019}, {0x60, 0x2018}, {0xA1, 0x00A1}, {0xA2, 0x00A2}, {0xA3, 0x00A3},
    {0xA4, 0x2044}, {0xA5, 0x00A5}, {0xA6, 0x0192}, {0xA7, 0x00A7}, {0xA8, 0x00A4},
    {0xA9, 0x0027}, {0xAA, 0x201C}, {0xAB, 0x00AB}, {0xAC, 0x2039}, {0xAD, 0x203A},
    {0xAE, 0xFB01}, {0xAF, 0xFB02}, {0xB1, 0x2013}, {0xB2, 0x2020}, {0xB3, 0x2021},
    {0xB4, 0x00B7}, {0xB6, 0x00B6}, {0xB7, 0x2022}, {0xB8, 0x201A}, {0xB9, 0x201E},
    {0xBA, 0x201D}, {0xBB, 0x00BB}, {0xBC, 0x2026}, {0xBD, 0x2030}, {0xBF, 0x00BF},
    {0xC1, 0x0060}, {0xC2, 0x00B4}, {0xC3, 0x02C6}, {0xC4, 0x02DC}, {0xC5, 0x00AF},
    {0xC6, 0x02D8}, {0xC7, 0x02D9}, {0xC8, 0x00A8}, {0xCA, 0x02DA}, {0xCB, 0x00B8},
    {0xCD, 0x02DD}, {0xCE, 0x02DB}, {0xCF, 0x02C7}, {0xD0, 0x2014}, {0xE1, 0x00C6},
    {0xE3, 0x00AA}, {0xE8, 0x0141}, {0xE9, 0x00D8}, {0xEA, 0x0152}, {0xEB, 0x00BA},
    {0xF1, 0x00E6}, {0xF5, 0x0131}, {0xF8, 0x0142}, {0xF9, 0x00F8}, {0xFA, 0x0153},
    {0xFB, 0x00DF},
};

// PDFDocEncoding: Latin-1 in the upper half apart from 0xA0 (the euro) and
// the unassigned 0xAD; spacing accents at 0x18..0x1F and typographic marks at
// 0x80..0x9E.
constexpr ByteMapping kPdfDocEncodingRows[] = {
    {0x18, 0x02D8}, {0x19, 0x02C7}, {0x1A, 0x02C6}, {0x1B, 0x02D9}, {0x1C, 0x02DD},
    {0x1D, 0x02DB}, {0x1E, 0x02DA}, {0x1F, 0x02DC}, {0x80, 0x2022}, {0x81, 0x2020},
    {0x82, 0x2021}, {0x83, 0x2026}, {0x84, 0x2014}, {0x85, 0x2013}, {0x86, 0x0192},
    {0x87, 0x2044}, {0x88, 0x2039}, {0x89, 0x203A}, {0x8A, 0x2212}, {0x8B, 0x2030},
    {0x8C, 0x201E}, {0x8D, 0x201C}, {0x8E, 0x201D}, {0x8F, 0x2018}, {0x90, 0x2019},
    {0x91, 0x201A}, {0x92, 0x2122}, {0x93, 0xFB01}, {0x94, 0xFB02}, {0x95, 0x0141},
    {0x96, 0x0152}, {0x97, 0x0160}, {0x98, 0x0178}, {0x99, 0x017D}, {0x9A, 0x0131},
    {0x9B, 0x0142}, {0x9C, 0x0153}, {0x9D, 0x0161}, {0x9E, 0x017E}, {0xA0, 0x20AC},
    {0xAD, kUnassigned},
};

constexpr ByteTable kStandardEncoding = buildByteTable(kStandardEncodingRows, false);
constexpr ByteTable kPdfDocEncoding = buildByteTable(kPdfDocEncodingRows, true);

constexpr CharsetCodec iconvCodec(CharsetId id, const char* name, size_t unit = 1) {
    return CharsetCodec{id, name, nullptr, unit};
}

// The ids 1 to 4 carry Windows code pages 932, 936, 950 and 949, so they
// decode with those supersets of Shift_JIS, GB2312, Big5 and EUC-KR. The four
// PDF base encodings (42..45) are Mac Roman, WinAnsi (code page 1252),
// StandardEncoding and PDFDocEncoding. 52, "utf-16", is little-endian like
// 51, as Windows and browsers read that label. "x-euc-big5" has no EUC form
// of its own and reads as plain Big5.
constexpr CharsetCodec kCodecs[] = {
    iconvCodec(1, "CP932"),        iconvCodec(2, "CP936"),
    iconvCodec(3, "CP950"),        iconvCodec(4, "CP949"),
    iconvCodec(5, "CP1250"),       iconvCodec(6, "CP1251"),
    iconvCodec(7, "CP1252"),       iconvCodec(8, "CP1253"),
    iconvCodec(9, "CP1254"),       iconvCodec(10, "CP1255"),
    iconvCodec(11, "CP1256"),      iconvCodec(12, "CP1257"),
    iconvCodec(13, "CP1258"),      iconvCodec(14, "ISO-8859-1"),
    iconvCodec(15, "ISO-8859-2"),  iconvCodec(16, "ISO-8859-3"),
    iconvCodec(17, "ISO-8859-4"),  iconvCodec(18, "ISO-8859-5"),
    iconvCodec(19, "ISO-8859-6"),  iconvCodec(20, "ISO-8859-7"),
    iconvCodec(21, "ISO-8859-8"),  iconvCodec(22, "ISO-8859-9"),
    iconvCodec(23, "ISO-8859-14"), iconvCodec(24, "ISO-8859-15"),
    iconvCodec(25, "CP437"),       iconvCodec(26, "CP737"),
    iconvCodec(27, "CP775"),       iconvCodec(28, "CP850"),
    iconvCodec(29, "CP851"),       iconvCodec(30, "CP852"),
    iconvCodec(31, "CP855"),       iconvCodec(32, "CP857"),
    iconvCodec(33, "CP860"),       iconvCodec(34, "CP861"),
    iconvCodec(35, "CP862"),       iconvCodec(36, "CP863"),
    iconvCodec(37, "CP864"),       iconvCodec(38, "CP865"),
    iconvCodec(39, "CP866"),       iconvCodec(40, "CP869"),
    iconvCodec(41, "CP874"),       iconvCodec(42, "MACINTOSH"),
    iconvCodec(43, "CP1252"),      CharsetCodec{44, nullptr, kStandardEncoding.data(), 1},
    CharsetCodec{45, nullptr, kPdfDocEncoding.data(), 1},
    iconvCodec(46, "IBM037"),      iconvCodec(47, "IBM1026"),
    iconvCodec(48, "IBM500"),      iconvCodec(49, "IBM875"),
    iconvCodec(51, "UTF-16LE", 2), iconvCodec(52, "UTF-16LE", 2),
    iconvCodec(53, "UTF-8"),       iconvCodec(54, "UTF-7"),
    iconvCodec(55, "ISO-2022-JP"), iconvCodec(56, "ISO-2022-CN"),
    iconvCodec(57, "ISO-2022-KR"), iconvCodec(66, "EUC-JP"),
    iconvCodec(67, "EUC-CN"),      iconvCodec(68, "BIG5"),
    iconvCodec(69, "EUC-KR"),      iconvCodec(94, "GB18030"),
};

}  // namespace

const CharsetCodec* charsetCodec(CharsetId id) {
    for (const CharsetCodec& codec : kCodecs) {
        if (codec.id == id) return &codec;
    }
    return nullptr;
}

const CharsetCodec* charsetCodecsBegin() { return std::begin(kCodecs); }
const CharsetCodec* charsetCodecsEnd() { return std::end(kCodecs); }

}  // namespace tnefhost
