// Writes the byte tables of the single-byte charsets of the host's codec
// table, read from glibc's iconv, as C++ source: the WebAssembly host has no
// iconv of its own that knows them, so it decodes and encodes them with
// these tables, byte for byte as the POSIX host does.
//
//   make_byte_tables OUTPUT.cpp
#include <iconv.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include "host/charset_codecs.h"

namespace {

using tnefhost::CharsetCodec;
using tnefhost::kUnassigned;

// The code point of each byte alone, or nothing when the codec reads some
// byte as the start of a longer sequence (a multi-byte or stateful charset).
bool readByteTable(const char* iconvName, std::vector<char16_t>* table) {
    iconv_t descriptor = iconv_open("UTF-32LE", iconvName);
    if (descriptor == reinterpret_cast<iconv_t>(-1)) return false;
    bool singleByte = true;
    table->assign(256, kUnassigned);
    for (int byte = 0; byte < 256 && singleByte; ++byte) {
        iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
        char in = static_cast<char>(byte);
        char32_t out[4] = {};
        char* from = &in;
        size_t fromLeft = 1;
        char* to = reinterpret_cast<char*>(out);
        size_t toLeft = sizeof out;
        size_t result = iconv(descriptor, &from, &fromLeft, &to, &toLeft);
        if (result == static_cast<size_t>(-1) && errno == EILSEQ) continue;  // unassigned
        if (result != static_cast<size_t>(-1)) iconv(descriptor, nullptr, nullptr, &to, &toLeft);
        size_t count = (sizeof out - toLeft) / sizeof(char32_t);
        if (result == static_cast<size_t>(-1) || count != 1 || out[0] > 0xFFFF) {
            singleByte = false;
        } else {
            (*table)[static_cast<size_t>(byte)] = static_cast<char16_t>(out[0]);
        }
    }
    iconv_close(descriptor);
    return singleByte;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_byte_tables OUTPUT.cpp\n");
        return 1;
    }
    std::string text =
        "// Made by web/tools/make_byte_tables from glibc's iconv; do not edit.\n"
        "#include \"web/wasm/byte_tables.h\"\n\nnamespace tnefweb {\n\nnamespace {\n\n";
    std::string rows;
    for (const CharsetCodec* codec = tnefhost::charsetCodecsBegin();
         codec != tnefhost::charsetCodecsEnd(); ++codec) {
        std::vector<char16_t> table;
        if (codec->iconvName == nullptr || codec->unitSize != 1 ||
            !readByteTable(codec->iconvName, &table)) {
            continue;
        }
        std::string name = "kTable" + std::to_string(codec->id);
        text += "constexpr char16_t " + name + "[256] = {";
        for (size_t i = 0; i < table.size(); ++i) {
            char cell[16];
            std::snprintf(cell, sizeof cell, "%s0x%04X", i % 12 == 0 ? "\n    " : " ",
                          static_cast<unsigned>(table[i]));
            text += cell;
            text += ",";
        }
        text += "\n};\n";
        rows += "        {" + std::to_string(codec->id) + ", " + name + "},\n";
    }
    text += "\nstruct Row {\n    CharsetId id;\n    const char16_t* table;\n};\n\n"
            "constexpr Row kRows[] = {\n" + rows + "};\n\n}  // namespace\n\n"
            "const char16_t* generatedByteTable(CharsetId id) {\n"
            "    for (const Row& row : kRows) {\n"
            "        if (row.id == id) return row.table;\n"
            "    }\n"
            "    return nullptr;\n"
            "}\n\n}  // namespace tnefweb\n";
    std::FILE* out = std::fopen(argv[1], "w");
    if (out == nullptr || std::fwrite(text.data(), 1, text.size(), out) != text.size() ||
        std::fclose(out) != 0) {
        std::fprintf(stderr, "make_byte_tables: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
