#include "rtf/tokenizer.h"

#include <array>
#include <cstdint>

namespace tnefrtf {

namespace {

constexpr int64_t kParameterCeiling = int64_t{INT32_MAX} + 1;

// Bytes that end a text run.
constexpr std::array<bool, 256> kEndsText = [] {
    std::array<bool, 256> table{};
    for (char c : {'\\', '{', '}', '\r', '\n'}) table[static_cast<uint8_t>(c)] = true;
    return table;
}();

bool isLetter(uint8_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(uint8_t c) { return c >= '0' && c <= '9'; }

// The value of a hex digit, or -1.
int hexValue(uint8_t c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

void Tokenizer::startParameter(uint8_t digit) {
    hasParameter_ = true;
    parameter_ = digit - '0';
    state_ = State::kParameter;
}

void Tokenizer::endWord(TokenHandler& handler) {
    ControlWord word;
    word.name = std::string_view(name_, nameLength_);
    word.overlong = overlong_;
    word.hasParameter = hasParameter_;
    int64_t value = negative_ ? -parameter_ : parameter_;
    word.parameter = static_cast<int32_t>(value > INT32_MAX ? INT32_MAX : value);
    state_ = State::kText;
    emitWord(word, handler);
}

void Tokenizer::emitWord(const ControlWord& word, TokenHandler& handler) {
    handler.controlWord(word);
    if (!word.overlong && word.parameter > 0 && word.name == "bin") {
        binaryLeft_ = static_cast<uint64_t>(word.parameter);
        state_ = State::kBinary;
    }
}

// The usual control word, whole inside the chunk, read in one go: letters,
// an optional parameter of at most nine digits, and the byte after it. Any
// other form (cut by the end of the chunk, overlong, a hyphen without
// digits, a long number) is left to the state machine.
bool Tokenizer::readWholeWord(const char*& p, const char* end, TokenHandler& handler) {
    const char* q = p;
    while (q < end && isLetter(static_cast<uint8_t>(*q))) ++q;
    size_t length = static_cast<size_t>(q - p);
    if (length == 0 || length > kMaxControlWordLength || q == end) return false;
    ControlWord word;
    word.name = std::string_view(p, length);
    bool negative = *q == '-';
    const char* digits = negative ? q + 1 : q;
    const char* digitsEnd = digits;
    int32_t value = 0;
    while (digitsEnd < end && digitsEnd - digits < 9 && isDigit(static_cast<uint8_t>(*digitsEnd))) {
        value = value * 10 + (*digitsEnd++ - '0');
    }
    if (digitsEnd == end || isDigit(static_cast<uint8_t>(*digitsEnd))) return false;
    if (digitsEnd > digits) {
        word.hasParameter = true;
        word.parameter = negative ? -value : value;
        q = digitsEnd;
    } else if (negative) {
        return false;
    }
    if (*q == ' ') ++q;
    p = q;
    emitWord(word, handler);
    return true;
}

void Tokenizer::feed(std::string_view chunk, TokenHandler& handler) {
    const char* p = chunk.data();
    const char* end = p + chunk.size();
    while (p < end) {
        switch (state_) {
            case State::kText: {
                const char* run = p;
                while (p < end && !kEndsText[static_cast<uint8_t>(*p)]) ++p;
                if (p > run) handler.text(std::string_view(run, static_cast<size_t>(p - run)));
                if (p == end) return;
                char c = *p++;
                if (c == '{') {
                    handler.groupStart();
                } else if (c == '}') {
                    handler.groupEnd();
                } else if (c == '\\' && !readWholeWord(p, end, handler)) {
                    state_ = State::kEscape;
                }
                break;
            }
            case State::kEscape: {
                auto c = static_cast<uint8_t>(*p++);
                if (isLetter(c)) {
                    name_[0] = static_cast<char>(c);
                    nameLength_ = 1;
                    overlong_ = negative_ = hasParameter_ = false;
                    parameter_ = 0;
                    state_ = State::kWord;
                } else if (c == '\'') {
                    state_ = State::kHex1;
                } else {
                    state_ = State::kText;
                    handler.controlSymbol(c == '\r' ? '\n' : static_cast<char>(c));
                }
                break;
            }
            case State::kWord: {
                while (p < end && isLetter(static_cast<uint8_t>(*p))) {
                    if (nameLength_ < kMaxControlWordLength) {
                        name_[nameLength_++] = *p;
                    } else {
                        overlong_ = true;
                    }
                    ++p;
                }
                if (p == end) return;
                auto c = static_cast<uint8_t>(*p);
                if (isDigit(c)) {
                    startParameter(c);
                    ++p;
                } else if (c == '-') {
                    state_ = State::kSign;
                    ++p;
                } else {
                    if (c == ' ') ++p;  // the delimiter belongs to the word
                    endWord(handler);
                }
                break;
            }
            case State::kSign: {
                auto c = static_cast<uint8_t>(*p);
                if (isDigit(c)) {
                    negative_ = true;
                    startParameter(c);
                    ++p;
                } else {
                    // A hyphen that starts no number ends the word and is text.
                    endWord(handler);
                    handler.text("-");
                }
                break;
            }
            case State::kParameter: {
                while (p < end && isDigit(static_cast<uint8_t>(*p))) {
                    if (parameter_ < kParameterCeiling) parameter_ = parameter_ * 10 + (*p - '0');
                    ++p;
                }
                if (parameter_ > kParameterCeiling) parameter_ = kParameterCeiling;
                if (p == end) return;
                if (*p == ' ') ++p;
                endWord(handler);
                break;
            }
            case State::kHex1:
            case State::kHex2: {
                // A \' without two hex digits is dropped; the byte that
                // stopped it is read again as text.
                int value = hexValue(static_cast<uint8_t>(*p));
                if (value < 0) {
                    state_ = State::kText;
                    break;
                }
                ++p;
                if (state_ == State::kHex1) {
                    hexHigh_ = static_cast<uint8_t>(value);
                    state_ = State::kHex2;
                } else {
                    state_ = State::kText;
                    handler.hexByte(static_cast<uint8_t>(hexHigh_ << 4 | value));
                }
                break;
            }
            case State::kBinary: {
                size_t available = static_cast<size_t>(end - p);
                size_t count = binaryLeft_ < available ? static_cast<size_t>(binaryLeft_) : available;
                handler.binary(std::string_view(p, count));
                p += count;
                binaryLeft_ -= count;
                if (binaryLeft_ == 0) state_ = State::kText;
                break;
            }
        }
    }
}

void Tokenizer::finish(TokenHandler& handler) {
    State state = state_;
    if (state == State::kWord || state == State::kSign || state == State::kParameter) {
        endWord(handler);
        if (state == State::kSign) handler.text("-");
    }
    state_ = State::kText;
    binaryLeft_ = 0;
}

}  // namespace tnefrtf
