// Messages written with their stored HTML or compressed RTF body, byte for
// byte: the seam behind the header, the choice of the HTML property, short
// input and refused memory.
#include <gtest/gtest.h>

#include "render/stored_body.h"
#include "tests/support/lzfu_compressor.h"
#include "tests/render/render_support.h"

namespace tneftest {
namespace {

using render::withProps;

const std::string kHtmlHeader =
    "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html\" /></head>\r\n"
    "<body>\r\n<p><font face=\"Arial Unicode MS\" size=2>\r\n</font></p>\r\n</body>\r\n</html>\r\n";
const std::string kRtfHeader =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0 {\\fonttbl{\\f0\\fcharset0 Arial Unicode MS;}}\\f0\\fs20\\par \\par ";

// The body as an extract with a wanted charset would write it; that charset
// must change nothing.
std::string writeBody(OpenedStream& s, BodyForm form, bool omitHeader = false) {
    tnefhost::MemoryIo output;
    TnefContainer* c = s.container;
    c->omitSummaryHeader = omitHeader ? 1 : 0;
    c->outputCharset = kCharsetUnicode;
    c->charsetConverted = 0;
    EXPECT_EQ(tnefWriteStoredBody(c, objectAt(c, 0), form, output.io()), 0);
    EXPECT_EQ(c->charsetConverted, 0);
    return output.text();
}

Prop rtf(const std::string& text) {
    return Prop::binary(kTagRtfCompressed, compressRtf(bytesOf(text)));
}

TEST(StoredBody, Bodies) {
    const std::string big(9000, 'h');  // three blocks
    struct Case { std::vector<Prop> props; BodyForm form; bool omitHeader; std::string expected; };
    const Case cases[] = {
        {{rtf("{\\rtf1\\ansi hi}")}, kBodyRtf, false, kRtfHeader + "\\rtf1\\ansi hi}"},
        {{rtf("{\\rtf1\\ansi hi}")}, kBodyRtf, true, "{\\rtf1\\ansi hi}"},
        {{rtf("{\\RTF1 hi}")}, kBodyRtf, false, kRtfHeader + "\\RTF1 hi}"},
        {{rtf("{\\rtf2 hi}")}, kBodyRtf, false, kRtfHeader + "{\\rtf2 hi}"},
        {{rtf("{\\rtf")}, kBodyRtf, false, kRtfHeader + "{\\rtf"},
        {{rtf("plain")}, kBodyRtf, false, kRtfHeader + "plain"},
        {{Prop::binary(kTagHtml, bytesOf("<p>bin</p>")), Prop::string8(kTagBodyHtml8, "<p>str</p>")}, kBodyHtml,
         false, kHtmlHeader + std::string("<p>str</p>\0", 11)},  // the 8-bit string, with its zero byte
        {{Prop::binary(kTagHtml, bytesOf(big))}, kBodyHtml, false, kHtmlHeader + big},
        {{Prop::binary(kTagHtml, bytesOf("<p>x</p>"))}, kBodyHtml, true, "<p>x</p>"},
        {{}, kBodyHtml, false, kHtmlHeader},
    };
    for (const Case& c : cases) {
        OpenedStream s(buildMessage(withProps(c.props)));
        EXPECT_EQ(writeBody(s, c.form, c.omitHeader), c.expected);
        EXPECT_EQ(s.close(), "");
    }
}

// No RTF body to be had leaves the header alone: the value's buffer
// refused, the decoder's buffer refused, nothing read.
TEST(StoredBody, RtfFailuresLeaveTheHeader) {
    for (int failure = 1; failure <= 3; ++failure) {
        OpenedStream s(buildMessage(withProps({rtf("{\\rtf1 x}")})));
        if (failure < 3) s.host.memory().refuseRequest(failure);
        if (failure == 3) s.input.failOperation(tnefhost::IoOp::kRead, 1);
        EXPECT_EQ(writeBody(s, kBodyRtf), kRtfHeader) << failure;
        EXPECT_EQ(s.close(), "");
    }
}

// A stored size that runs past the end of the input copies what is there:
// the value and whatever follows it in the stream.
TEST(StoredBody, HtmlShorterThanItsSize) {
    Bytes stream = buildMessage(withProps({Prop::binary(kTagHtml, bytesOf("<p>end</p>"))}));
    OpenedStream s(stream);
    TnefPropValue& value = objectAt(s.container, 0)->props[0].values[0];
    ASSERT_EQ(objectAt(s.container, 0)->props[0].tag, kTagHtml);
    value.located.length = 1 << 20;
    EXPECT_EQ(writeBody(s, kBodyHtml), kHtmlHeader + std::string(stream.begin() + value.located.filePos, stream.end()));
}

}  // namespace
}  // namespace tneftest
