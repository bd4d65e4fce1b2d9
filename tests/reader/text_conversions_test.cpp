// The module's two conversions into fresh buffers: results, exact buffer
// sizes, and currentCharset left as it was on every road.
#include "reader/text_conversions.h"

#include <gtest/gtest.h>

#include "host/posix_host.h"
#include "tests/support/tnef_writer.h"

namespace tneftest {
namespace {

constexpr CharsetId kBefore = 6;  // what currentCharset holds around each call

// What one conversion gave: `count` bytes, the two bytes behind them (for
// tnefCharsetToUnicode) and the size of the buffer.
struct Converted { bool present = false; int32_t count = -1; Bytes bytes, terminator; size_t allocated = 0; };

class TextConversions : public ::testing::Test {
protected:
    TextConversions() {
        container_.host = host_.context();
        host_.context()->currentCharset = kBefore;
    }
    void TearDown() override { EXPECT_EQ("", host_.memory().leakReport()); }

    // Converts to UTF-16 or to 8-bit text, takes the result apart and frees it.
    Converted convert(bool toUnicode, const Bytes& text, CharsetId id) {
        Converted result;
        auto size = static_cast<int32_t>(text.size());
        uint8_t* buffer = toUnicode ? tnefCharsetToUnicode(&container_, text.data(), size, &result.count, id)
                                    : tnefUnicodeToCharset(&container_, text.data(), size, &result.count, id);
        EXPECT_EQ(kBefore, host_.context()->currentCharset);
        if (buffer == nullptr) return result;
        result.present = true;
        result.allocated = host_.memory().blockSize(buffer);
        result.bytes.assign(buffer, buffer + result.count);
        result.terminator.assign(buffer + result.count, buffer + result.count + (toUnicode ? 2 : 0));
        container_.host->allocator.free(&container_.host->allocator, buffer);
        return result;
    }

    tnefhost::PosixHost host_;
    TnefContainer container_{};
};

TEST_F(TextConversions, ConvertsWithExactBuffers) {
    struct Case { CharsetId id; Bytes eightBit; std::string text; };
    const Case cases[] = {
        {53, {0xE2, 0x82, 0xAC, 0}, std::string("\xE2\x82\xAC\0", 4)},  // a terminator stays
        {0, {0xE9}, "\xC3\xA9"},  // the host's default, windows-1252
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.id);
        Converted unicode = convert(true, test.eightBit, test.id);
        ASSERT_TRUE(unicode.present);
        EXPECT_EQ(utf16(test.text), unicode.bytes);
        EXPECT_EQ((Bytes{0, 0}), unicode.terminator);
        EXPECT_EQ(unicode.bytes.size() + 2, unicode.allocated);

        Converted eightBit = convert(false, utf16(test.text), test.id);
        ASSERT_TRUE(eightBit.present);
        EXPECT_EQ(test.eightBit, eightBit.bytes);
        EXPECT_EQ(eightBit.bytes.size(), eightBit.allocated);
    }
    // What can't be converted becomes the replacement: a space in UTF-16, '?' in 8-bit text.
    EXPECT_EQ(utf16("a b"), convert(true, {'a', 0xFF, 'b'}, kCharsetUtf8).bytes);
    EXPECT_EQ((Bytes{'a', '?', 'b'}), convert(false, utf16("a\xE4\xB8\xAD" "b"), 7).bytes);
}

TEST_F(TextConversions, NoResult) {
    Bytes text = utf16("abc");
    for (bool unicode : {true, false}) {
        EXPECT_FALSE(convert(unicode, {}, 7).present);   // nothing to convert
        Converted unmeasured = convert(unicode, text, 50);  // the host measures 0
        EXPECT_FALSE(unmeasured.present);
        EXPECT_EQ(0, unmeasured.count);
    }
    int32_t count = -1;
    EXPECT_EQ(nullptr, tnefCharsetToUnicode(&container_, nullptr, 3, &count, 7));
    // A host without the services.
    host_.context()->hostCharsetToUnicode = nullptr;
    host_.context()->hostUnicodeToCharset = nullptr;
    EXPECT_FALSE(convert(true, text, 7).present);
    EXPECT_FALSE(convert(false, text, 7).present);
}

}  // namespace
}  // namespace tneftest
