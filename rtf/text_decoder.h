// Characters of an RTF document as UTF-8: bytes of a code page (text runs
// and \'hh), UTF-16 code units (\uN) and named characters. Sequences that
// span tokens are put together here: the two bytes of a double-byte code
// page, the bytes of a UTF-8 character, the two halves of a surrogate pair.
// C0 controls other than the tab carry no text and are dropped.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "rtf/code_pages.h"

namespace tnefrtf {

class TextDecoder {
public:
    explicit TextDecoder(CodePageDecoder& decoder) : decoder_(decoder) {}

    // Each call returns UTF-8 that stays valid until the next call, and may
    // view the argument itself. A byte that opens a sequence waits for the
    // rest; anything but the rest makes it U+FFFD.
    std::string_view bytes(std::string_view bytes, uint32_t codePage);
    std::string_view codeUnit(uint16_t unit);
    std::string_view character(char32_t code);
    // A waiting sequence that will not be completed: U+FFFD, or nothing.
    std::string_view flush();
    bool waiting() const { return sequenceLength_ != 0 || highSurrogate_ != 0; }

private:
    struct Utf8Char {
        char bytes[4];
        uint8_t length;
    };
    struct ByteTable {
        uint32_t codePage;
        std::array<Utf8Char, 128> high;  // length 0xFF: not decoded yet
    };
    static constexpr uint8_t kNotDecoded = 0xFF;

    void flushInto();
    void startSequence(uint8_t byte, uint32_t codePage);
    void continueSequence(uint8_t byte);
    void endSequence();
    void putSingle(uint8_t byte, uint32_t codePage);
    void putDecoded(Utf8Char& slot, uint32_t codePage, std::string_view bytes);
    ByteTable& tableFor(uint32_t codePage);

    CodePageDecoder& decoder_;
    std::string out_;
    std::string scratch_;
    // A sequence of bytes waiting for its end.
    uint8_t sequence_[4] = {};
    uint8_t sequenceLength_ = 0;
    uint8_t sequenceExpected_ = 0;
    uint32_t sequenceCodePage_ = 0;
    char16_t highSurrogate_ = 0;
    std::vector<std::unique_ptr<ByteTable>> tables_;
    ByteTable* lastTable_ = nullptr;
    std::unordered_map<uint64_t, Utf8Char> pairs_;
};

}  // namespace tnefrtf
