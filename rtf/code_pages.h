// Code pages: how the readers turn the 8-bit text of an RTF document into
// UTF-8. The document names its code pages (\ansicpgN, a font's \fcharsetN
// or \cpgN); a CodePageDecoder reads them. The host's charset services
// provide one (rtf/host_code_pages.h); without a host the built-in decoder
// reads code page 1252 and ISO-8859-1.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tnefrtf {

constexpr uint32_t kCodePageWindows1252 = 1252;
constexpr uint32_t kCodePageLatin1 = 28591;
constexpr uint32_t kCodePageUtf8 = 65001;
// What Windows calls the code page of symbol fonts (\fcharset2).
constexpr uint32_t kCodePageSymbol = 42;

class CodePageDecoder {
public:
    virtual ~CodePageDecoder() = default;
    // Appends to `utf8` the text that `bytes` stand for in code page
    // `codePage`, a byte or pair the code page lacks as U+FFFD. False, with
    // nothing appended, when the code page can't be read at all.
    virtual bool decode(uint32_t codePage, std::string_view bytes, std::string& utf8) = 0;
    // Whether `byte` opens a two-byte character of `codePage`.
    virtual bool isLeadByte(uint32_t codePage, uint8_t byte) = 0;
};

// Code page 1252 and ISO-8859-1, needing no host.
class BuiltinCodePageDecoder final : public CodePageDecoder {
public:
    bool decode(uint32_t codePage, std::string_view bytes, std::string& utf8) override;
    bool isLeadByte(uint32_t, uint8_t) override { return false; }
};

// The code page of a font's \fcharsetN; 0 where the charset means the
// document's own code page (ANSI, default) or is one RTF doesn't define.
uint32_t codePageOfCharset(int32_t charset);

// Appends the UTF-8 form of `code`; U+FFFD for what is no scalar value.
void appendUtf8(std::string& out, char32_t code);

}  // namespace tnefrtf
