// The RTF tokenizer: every kind of token, the odd and the broken forms, and
// the same tokens whichever way the input is cut into chunks.
#include "rtf/tokenizer.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Writes tokens as text: { } \word(param)(+ when overlong) \symbol 'hh
// [text] <binary>; adjacent text and binary pieces are joined, since where
// a run is cut depends on the chunks.
class Recorder final : public tnefrtf::TokenHandler {
public:
    void groupStart() override { token("{"); }
    void groupEnd() override { token("}"); }
    void controlWord(const tnefrtf::ControlWord& word) override {
        token("\\" + std::string(word.name) + (word.hasParameter ? std::to_string(word.parameter) : "") +
              (word.overlong ? "+" : ""));
    }
    void controlSymbol(char symbol) override { token(symbol == '\n' ? "\\<par>" : std::string("\\") + symbol); }
    void hexByte(uint8_t byte) override {
        static const char digits[] = "0123456789abcdef";
        token(std::string("'") + digits[byte >> 4] + digits[byte & 15]);
    }
    void text(std::string_view run) override { piece('[', run, ']'); }
    void binary(std::string_view data) override { piece('<', data, '>'); }

    std::string tokens;

private:
    void token(const std::string& t) {
        tokens += (tokens.empty() ? "" : " ") + t;
        lastPiece_ = 0;
    }
    void piece(char open, std::string_view bytes, char close) {
        if (lastPiece_ == open) {
            tokens.insert(tokens.size() - 1, bytes);
            return;
        }
        token(open + std::string(bytes) + close);
        lastPiece_ = open;
    }
    char lastPiece_ = 0;
};

std::string tokenize(std::string_view input, size_t chunk) {
    tnefrtf::Tokenizer tokenizer;
    Recorder recorder;
    for (size_t at = 0; at < input.size(); at += chunk) tokenizer.feed(input.substr(at, chunk), recorder);
    tokenizer.finish(recorder);
    return recorder.tokens;
}

TEST(Tokenizer, TokensInAnyChunks) {
    struct Case { std::string input; std::string tokens; };
    const Case cases[] = {
        {"\\b0\\i-12 x\\par  two", "\\b0 \\i-12 [x] \\par [ two]"},  // one blank is the delimiter
        {"\\a\\b{\\c}}", "\\a \\b { \\c } }"},
        {"\\'e9\\'E9\\'4g\\'zz", "'e9 'e9 [gzz]"},                 // a \' without two hex digits is dropped
        {"\\~\\{\\}\\\\\\*\\-", "\\~ \\{ \\} \\\\ \\* \\-"},
        {"a\r\nb\\\r\nc\\\nd", "[ab] \\<par> [c] \\<par> [d]"},   // line ends are no text
        {"\\bin3 {}\\x\\bin0 y", "\\bin3 <{}\\> [x] \\bin0 [y]"},
        {"\\bin-5 x", "\\bin-5 [x]"},
        {"\\f99999999999 \\f-99999999999 ", "\\f2147483647 \\f-2147483648"},
        {"\\" + std::string(40, 'a') + " x", "\\" + std::string(32, 'a') + "+ [x]"},
        {"\\foo-bar", "\\foo [-bar]"},
        {"\\foo-", "\\foo [-]"},
        {"a\\", "[a]"},
        {"a\\'4", "[a]"},
        {"\\bin9 ab", "\\bin9 <ab>"},
        {std::string("\0\xff", 2), std::string("[\0\xff]", 4)},
    };
    for (const Case& c : cases) {
        for (size_t chunk : {c.input.size() + 1, size_t{1}, size_t{3}}) {
            EXPECT_EQ(tokenize(c.input, chunk), c.tokens) << c.input << " in chunks of " << chunk;
        }
    }
}

}  // namespace
