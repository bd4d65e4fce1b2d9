// The module's two conversions into fresh buffers: results, exact buffer
// sizes, and currentCharset left as it was on every road.
#include "reader/text_conversions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/posix_host.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes utf16(const std::u16string& text) {
    Bytes out;
    for (char16_t unit : text) {
        out.push_back(static_cast<uint8_t>(unit & 0xFF));
        out.push_back(static_cast<uint8_t>(unit >> 8));
    }
    return out;
}

constexpr CharsetId kBefore = 6;  // what currentCharset holds around each call

class TextConversions : public ::testing::Test {
protected:
    TextConversions() {
        container_.host = host_.context();
        host_.context()->currentCharset = kBefore;
    }

    // Runs one conversion and takes its result apart; the buffer is freed.
    struct Result {
        bool present = false;
        int32_t count = -1;
        Bytes bytes;       // `count` bytes
        Bytes terminator;  // the two bytes behind them, for tnefCharsetToUnicode
        size_t allocated = 0;
    };

    // Converts to UTF-16 (with the two zero bytes behind) or to 8-bit text,
    // and frees the buffer.
    Result convert(bool toUnicode, const Bytes& text, CharsetId id) {
        Result result;
        auto size = static_cast<int32_t>(text.size());
        uint8_t* buffer =
            toUnicode ? tnefCharsetToUnicode(&container_, text.data(), size, &result.count, id)
                      : tnefUnicodeToCharset(&container_, text.data(), size, &result.count, id);
        EXPECT_EQ(kBefore, host_.context()->currentCharset);
        if (buffer == nullptr) return result;
        result.present = true;
        result.allocated = host_.memory().liveBytes();
        result.bytes.assign(buffer, buffer + result.count);
        result.terminator.assign(buffer + result.count,
                                 buffer + result.count + (toUnicode ? 2 : 0));
        container_.host->allocator.free(&container_.host->allocator, buffer);
        return result;
    }

    void TearDown() override { EXPECT_EQ("", host_.memory().leakReport()); }

    tnefhost::PosixHost host_;
    TnefContainer container_{};
};

TEST_F(TextConversions, ConvertsWithExactBuffers) {
    struct Case {
        CharsetId id;
        Bytes eightBit;
        std::u16string text;
    };
    const Case cases[] = {
        {7, {'c', 'a', 'f', 0xE9}, u"café"},
        {1, {0x93, 0xFA, 0x96, 0x7B}, u"日本"},
        {53, {0xE2, 0x82, 0xAC, 0}, std::u16string(u"€") + u'\0'},  // a terminator stays
        {0, {0xE9}, u"é"},  // the host's default, windows-1252
    };
    for (const Case& test : cases) {
        Result unicode = convert(true, test.eightBit, test.id);
        ASSERT_TRUE(unicode.present) << test.id;
        EXPECT_EQ(utf16(test.text), unicode.bytes) << test.id;
        EXPECT_EQ((Bytes{0, 0}), unicode.terminator) << test.id;
        EXPECT_EQ(unicode.bytes.size() + 2, unicode.allocated) << test.id;

        Result eightBit = convert(false, utf16(test.text), test.id);
        ASSERT_TRUE(eightBit.present) << test.id;
        EXPECT_EQ(test.eightBit, eightBit.bytes) << test.id;
        EXPECT_EQ(eightBit.bytes.size(), eightBit.allocated) << test.id;
    }
}

TEST_F(TextConversions, NoResult) {
    Bytes text = utf16(u"abc");
    for (bool unicode : {true, false}) {
        EXPECT_FALSE(convert(unicode, {}, 7).present);   // nothing to convert
        Result unmeasured = convert(unicode, text, 50);  // the host measures 0
        EXPECT_FALSE(unmeasured.present);
        EXPECT_EQ(0, unmeasured.count);
        host_.memory().refuseRequest(1);
        Result refused = convert(unicode, text, 7);
        EXPECT_FALSE(refused.present);
        EXPECT_EQ(0, refused.count);
        host_.memory().clearFaults();
    }
    int32_t count = -1;
    EXPECT_EQ(nullptr, tnefCharsetToUnicode(&container_, nullptr, 3, &count, 7));
    // A host without the services.
    host_.context()->hostCharsetToUnicode = nullptr;
    host_.context()->hostUnicodeToCharset = nullptr;
    EXPECT_FALSE(convert(true, text, 7).present);
    EXPECT_FALSE(convert(false, text, 7).present);
}

TEST_F(TextConversions, PassesTheReplacementBytes) {
    EXPECT_EQ(utf16(u"a b"), convert(true, {'a', 0xFF, 'b'}, kCharsetUtf8).bytes);
    EXPECT_EQ((Bytes{'a', '?', 'b'}), convert(false, utf16(u"a中b"), 7).bytes);
}

}  // namespace
