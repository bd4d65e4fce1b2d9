// The extraction dispatcher: index translation, per-extract settings, the
// output's checks and closing steps, the byte-for-byte road, and the
// message's text, stored HTML and RTF bodies byte for byte.
#include <gtest/gtest.h>

#include "reader/operations.h"
#include "tests/support/cfb_writer.h"  // patternBytes
#include "tests/support/lzfu_compressor.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

using tnefhost::IoOp;

Bytes twoAttachments() {
    return buildMessage({.body = "text body",
                         .props = {Prop::string8(kTagSubject8, "s")},
                         .attachments = {{.title = "a.bin", .data = patternBytes(10000)},
                                         {.title = "empty", .data = Bytes{}}}});
}

TEST(Extract, RawCopyAndIndexTranslation) {
    for (uint32_t flags : {0u, 0x40000u}) {
        OpenedStream s(twoAttachments(), flags);
        int32_t o = flags != 0 ? 1 : 0;
        Extraction a = extractSubfile(s, 1 + o, 2 | 4, 7);  // the flags change nothing in a raw copy
        EXPECT_EQ(a.status, 0);
        EXPECT_EQ(a.bytes, patternBytes(10000));
        EXPECT_EQ(a.size, 10000);
        EXPECT_FALSE(a.leftOpen);
        EXPECT_EQ(a.outputCharsetAfter, 0) << "the wanted charset is consumed";
        EXPECT_EQ(s.container->outputCharset, 7);
        Extraction empty = extractSubfile(s, 2 + o);
        EXPECT_EQ(empty.status, 0);
        EXPECT_EQ(empty.size, 0);
        EXPECT_TRUE(empty.bytes.empty());
        // The settings of one extraction do not leak into the next.
        EXPECT_EQ(s.container->omitSummaryHeader + s.container->preferStoredBody + s.container->outputCharset, 0);
        Extraction beyond = extractSubfile(s, 3 + o, 0, 5);
        EXPECT_EQ(beyond.status, 20);
        EXPECT_EQ(beyond.outputCharsetAfter, 0) << "consumed also on status 20";
    }
    OpenedStream rooted(twoAttachments(), 0x40000);
    Extraction root = extractSubfile(rooted, 0, 0, 9);
    EXPECT_EQ(root.status, 0);
    EXPECT_EQ(root.outputCharsetAfter, 9) << "the root entry consumes nothing";
    EXPECT_EQ(root.openCalls, 0u) << "nor opens the output";
}

TEST(Extract, UnusableOutputs) {
    OpenedStream s(twoAttachments());
    for (IoOp op : {IoOp::kOpen, IoOp::kClose, IoOp::kSeek, IoOp::kWrite}) {
        tnefhost::MemoryIo output;
        output.removeSlot(op);
        ExtractRequest request{};
        EXPECT_EQ(tnefExtractSubfile(s.container, 1, output.io(), &request, &s.memory, 0), 16);
        EXPECT_TRUE(output.bytes().empty());
    }
    tnefhost::MemoryIo refusing;
    refusing.failOperation(IoOp::kOpen, 1);
    ExtractRequest request{};
    EXPECT_EQ(tnefExtractSubfile(s.container, 1, refusing.io(), &request, &s.memory, 0), 16);
}

const std::string kHtmlHeader =
    "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html\" /></head>\r\n"
    "<body>\r\n<p><font face=\"Arial Unicode MS\" size=2>\r\n</font></p>\r\n</body>\r\n</html>\r\n";
const std::string kRtfHeader =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0 {\\fonttbl{\\f0\\fcharset0 Arial Unicode MS;}}\\f0\\fs20\\par \\par ";
const std::string kTextHeader = "Importance: Normal\r\n\r\n\r\n\r\n";  // of a message without fields

Prop rtf(const std::string& text) {
    return Prop::binary(kTagRtfCompressed, compressRtf(bytesOf(text)));
}

// The body form chosen for the message (flag 4 prefers a stored body to the
// text), the seam behind the stored RTF body's header, the choice of the HTML
// property, and the charset: a wanted one changes nothing in a stored body.
// No RTF body to be had (the decoder's buffer refused, nothing read) leaves
// the header alone.
TEST(Extract, MessageBodies) {
    const Prop html8 = Prop::string8(kTagBodyHtml8, "<p>str</p>");
    const std::string html8Body("<p>str</p>\0", 11);  // the 8-bit string, with its zero byte
    struct Case {
        const char* what;
        MessageLayout plan;
        uint32_t flags;
        CharsetId wanted;
        std::string expected;
        bool converted = false;  // a charset wanted for the text is reported when it was converted
        void (*arrange)(OpenedStream&) = nullptr;
    };
    const Case cases[] = {
        {"text converted", {.oemCodePage = 1252, .body = "caf\xE9"}, 0, 53, kTextHeader + "caf\xC3\xA9", true},
        {"text and HTML", {.body = "b", .props = {html8}}, 0, 0, kTextHeader + "b"},
        {"text and HTML, stored preferred", {.body = "b", .props = {html8}}, 4, 51, kHtmlHeader + html8Body},
        {"no body", {}, 4, 0, kTextHeader},
        {"HTML and RTF", {.props = {rtf("{\\rtf1 x}"), html8}}, 0, 51, kHtmlHeader + html8Body},
        {"both HTML properties", {.props = {Prop::binary(kTagHtml, bytesOf("<p>bin</p>")), html8}}, 0, 51,
         kHtmlHeader + html8Body},
        {"RTF", {.props = {rtf("{\\rtf1\\ansi hi}")}}, 0, 51, kRtfHeader + "\\rtf1\\ansi hi}"},
        {"RTF without header", {.props = {rtf("{\\rtf1\\ansi hi}")}}, 2, 51, "{\\rtf1\\ansi hi}"},
        {"RTF, upper case", {.props = {rtf("{\\RTF1 hi}")}}, 0, 0, kRtfHeader + "\\RTF1 hi}"},
        {"RTF, cut short", {.props = {rtf("{\\rtf")}}, 0, 0, kRtfHeader + "{\\rtf"},
        {"RTF, decoder refused", {.props = {rtf("{\\rtf1 x}")}}, 0, 0, kRtfHeader, false,
         [](OpenedStream& s) { s.host.memory().refuseRequest(2); }},
        {"RTF, not read", {.props = {rtf("{\\rtf1 x}")}}, 0, 0, kRtfHeader, false,
         [](OpenedStream& s) { s.input.failOperation(tnefhost::IoOp::kRead, 1); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        OpenedStream s(buildMessage(c.plan));
        if (c.arrange != nullptr) c.arrange(s);
        Extraction e = extractSubfile(s, 0, c.flags, c.wanted);
        EXPECT_EQ(e.status, 0);
        EXPECT_EQ(std::string(e.bytes.begin(), e.bytes.end()), c.expected);
        EXPECT_EQ(e.resultFlags & 4, c.converted ? 4u : 0u);
        EXPECT_EQ(extractSubfile(s, 0, c.flags).resultFlags & 4, 0u) << "not kept for the next extraction";
        EXPECT_EQ(s.close(), "");
    }
}

}  // namespace
}  // namespace tneftest
