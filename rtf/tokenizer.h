// The RTF tokenizer: bytes in, tokens out. It is fed in chunks of any size
// (a token may be cut anywhere between two chunks) and keeps only the token
// it is in the middle of, so it never holds the document. Any byte sequence
// gives tokens; the end of the input, wherever it falls, ends them cleanly.
#pragma once

#include <cstdint>
#include <string_view>

namespace tnefrtf {

// RTF's own bound on the letters of a control word.
constexpr size_t kMaxControlWordLength = 32;

struct ControlWord {
    std::string_view name;  // the letters, at most kMaxControlWordLength of them
    bool overlong = false;  // there were more letters than that: no word RTF knows
    bool hasParameter = false;
    int32_t parameter = 0;  // saturates at the int32_t range
};

// What the tokenizer finds, in input order. Text runs never hold `\`, `{`,
// `}`, CR or LF (line ends are no content in RTF); one run of the input may
// arrive in several pieces.
class TokenHandler {
public:
    virtual ~TokenHandler() = default;
    virtual void groupStart() = 0;
    virtual void groupEnd() = 0;
    virtual void controlWord(const ControlWord& word) = 0;
    // `\` and a character that is not a letter; a backslash before a line
    // end (a paragraph mark in RTF) arrives as '\n'.
    virtual void controlSymbol(char symbol) = 0;
    virtual void hexByte(uint8_t byte) = 0;  // \'hh
    virtual void text(std::string_view run) = 0;
    // The bytes that follow \binN, in one or more pieces.
    virtual void binary(std::string_view data) = 0;
};

class Tokenizer {
public:
    void feed(std::string_view chunk, TokenHandler& handler);
    // The input ends: a control word cut by the end still comes out; a \'
    // without its two digits is dropped; binary data cut short ends there.
    void finish(TokenHandler& handler);

private:
    enum class State : uint8_t { kText, kEscape, kWord, kSign, kParameter, kHex1, kHex2, kBinary };

    void endWord(TokenHandler& handler);
    void emitWord(const ControlWord& word, TokenHandler& handler);
    bool readWholeWord(const char*& p, const char* end, TokenHandler& handler);
    void startParameter(uint8_t digit);

    State state_ = State::kText;
    char name_[kMaxControlWordLength];
    size_t nameLength_ = 0;
    bool overlong_ = false;
    bool negative_ = false;
    bool hasParameter_ = false;
    int64_t parameter_ = 0;
    uint8_t hexHigh_ = 0;
    uint64_t binaryLeft_ = 0;
};

}  // namespace tnefrtf
