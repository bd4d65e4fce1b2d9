// The extraction dispatcher: index translation, per-extract settings, the
// output's checks and closing steps, and the byte-for-byte road.
#include <gtest/gtest.h>

#include "reader/operations.h"
#include "tests/support/cfb_writer.h"
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
        Extraction a = extractSubfile(s, 1 + o, 0, 7);
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

TEST(Extract, DataRunningPastTheInput) {
    TnefWriter w;
    w.version().attachRendData().record(kLevelAttachment, 0x800F, bytesOf("only this"),
                                        {.length = 100000, .writeChecksum = false});
    OpenedStream s(w.bytes());
    Extraction e = extractSubfile(s, 1);
    EXPECT_EQ(e.status, 0);
    EXPECT_EQ(e.bytes, bytesOf("only this"));
}

TEST(Extract, SettingsDoNotLeakIntoTheNextExtraction) {
    OpenedStream s(twoAttachments());
    extractSubfile(s, 1, 2 | 4);
    EXPECT_EQ(s.container->omitSummaryHeader, 1);
    EXPECT_EQ(s.container->preferStoredBody, 1);
    extractSubfile(s, 1, 0);
    EXPECT_EQ(s.container->omitSummaryHeader, 0);
    EXPECT_EQ(s.container->preferStoredBody, 0);
    EXPECT_EQ(s.container->outputCharset, 0);
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

TEST(Extract, FailedReadsEndTheCopyEarly) {
    Bytes stream = twoAttachments();
    OpenedStream whole(stream);
    Bytes full = extractSubfile(whole, 1).bytes;
    for (uint64_t n = 1; n < 5; ++n) {
        OpenedStream s(stream);
        s.input.failOperation(IoOp::kRead, n);
        Extraction e = extractSubfile(s, 1);
        EXPECT_EQ(e.status, 0) << n;
        EXPECT_EQ(e.bytes.size(), std::min<size_t>(4096 * (n - 1), 10000)) << n;
        EXPECT_EQ(e.bytes, Bytes(full.begin(), full.begin() + static_cast<long>(e.bytes.size()))) << n;
    }
}

std::string renderedStart(OpenedStream& s, uint32_t flags) {
    Extraction e = extractSubfile(s, 0, flags);
    EXPECT_EQ(e.status, 0);
    return std::string(e.bytes.begin(), e.bytes.begin() + std::min<size_t>(e.bytes.size(), 12));
}

TEST(Extract, BodyFormOfTheMessage) {
    const std::string rtfHead = "{\\rtf1\\ansi\\";
    const std::string htmlHead = "<html>\r\n<hea";
    Prop html = Prop::string8(kTagBodyHtml8, "<p>x</p>", false);
    Prop rtf = Prop::binary(kTagRtfCompressed, compressRtf(bytesOf("{\\rtf1 body}")));
    Prop subject = Prop::string8(kTagSubject8, "s");
    struct Case {
        const char* what;
        MessageLayout plan;
        std::string withoutFlag;
        std::string withFlag;
    };
    const Case cases[] = {
        {"text and HTML", {.body = "b", .props = {subject, html}}, "Subject: s\r\n", htmlHead},
        {"RTF only", {.props = {subject, rtf}}, rtfHead, rtfHead},
        {"HTML and RTF", {.props = {subject, rtf, html}}, htmlHead, htmlHead},
        {"no body at all", {.props = {subject}}, "Subject: s\r\n", "Subject: s\r\n"},
        {"text only", {.body = "b", .props = {subject}}, "Subject: s\r\n", "Subject: s\r\n"},
    };
    for (const Case& c : cases) {
        OpenedStream s(buildMessage(c.plan));
        EXPECT_EQ(renderedStart(s, 0), c.withoutFlag) << c.what;
        EXPECT_EQ(renderedStart(s, 4), c.withFlag) << c.what;
    }
}

TEST(Extract, ConvertedCharsetIsReported) {
    OpenedStream s(buildMessage({.oemCodePage = 1252, .body = "caf\xE9", .props = {Prop::string8(kTagSubject8, "s")}}));
    Extraction converted = extractSubfile(s, 0, 0, 53);
    EXPECT_EQ(converted.resultFlags & 4, 4u);
    EXPECT_NE(std::string(converted.bytes.begin(), converted.bytes.end()).find("caf\xC3\xA9"), std::string::npos);
    EXPECT_EQ(extractSubfile(s, 0, 0, 0).resultFlags & 4, 0u);
}

}  // namespace
}  // namespace tneftest
