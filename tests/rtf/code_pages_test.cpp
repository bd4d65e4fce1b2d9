// Reading code pages: through the host's charset services, and built in
// where there is no host.
#include <gtest/gtest.h>

#include "host/posix_host.h"
#include "rtf/converter.h"
#include "rtf/host_code_pages.h"

namespace {

struct Case {
    uint32_t codePage;
    std::string bytes;
    bool decoded;
    std::string utf8;
};

void expectDecoded(tnefrtf::CodePageDecoder& decoder, const Case& c) {
    std::string utf8 = "=";
    EXPECT_EQ(decoder.decode(c.codePage, c.bytes, utf8), c.decoded) << c.codePage << " " << c.bytes;
    EXPECT_EQ(utf8, "=" + c.utf8) << c.codePage << " " << c.bytes;
}

TEST(CodePages, ThroughTheHost) {
    tnefhost::PosixHost host;
    host.context()->currentCharset = 14;
    tnefrtf::HostCodePageDecoder decoder(host.context());
    // (Which code page each number names is checked by NativeRtf.Text.)
    const Case cases[] = {
        {1252, "\x1a", true, "\x1a"}, {1252, "\x81", true, "\uFFFD"}, {1361, "\x88", false, ""}, {0, "a", false, ""},
    };
    for (const Case& c : cases) {
        expectDecoded(decoder, c);
        EXPECT_EQ(host.context()->currentCharset, 14) << "the context's charset is put back";
    }
    EXPECT_TRUE(decoder.isLeadByte(932, 0x82));
    EXPECT_FALSE(decoder.isLeadByte(932, 0x41));

    // A host without the services reads nothing.
    HostContext bare = *host.context();
    bare.hostCharsetToCharset = nullptr;
    bare.hostIsLeadByte = nullptr;
    tnefrtf::HostCodePageDecoder without(&bare);
    expectDecoded(without, {1252, "\xe9", false, ""});
    EXPECT_FALSE(without.isLeadByte(932, 0x82));
}

TEST(CodePages, BuiltIn) {
    tnefrtf::BuiltinCodePageDecoder decoder;
    const Case cases[] = {
        {1252, "a\x80\x81\x84\x9f\xe9", true, "a\u20AC\uFFFD\u201E\u0178\u00E9"},
        {28591, "\x80\xe9", true, "\u0080\u00E9"},
        {1251, "\xc0", false, ""},
    };
    for (const Case& c : cases) expectDecoded(decoder, c);
    // A converter given no decoder uses it.
    tnefrtf::StringSink sink;
    tnefrtf::convertRtf("{\\rtf1\\ansicpg1251{\\fonttbl{\\f1\\cpg1252 A;}}\\'c0\\f1\\'e9}", tnefrtf::OutputForm::kText,
                        sink);
    EXPECT_EQ(sink.text, "\uFFFD\u00E9");
}

}  // namespace
