// Sweeps over whole sessions: for rich streams, refuse each allocation in
// turn, of the module's memory and of the host's result memory, and fail
// each I/O call in turn; every run must end each operation with a status it
// may give and leave nothing allocated.
#include <gtest/gtest.h>

#include "tests/support/cfb_writer.h"
#include "tests/support/lzfu_compressor.h"
#include "tests/support/ole_descriptors.h"
#include "tests/sweeps/session.h"

namespace tneftest {
namespace {

std::vector<std::vector<Prop>> recipientRows(bool wide) {
    auto text = [wide](uint32_t tag8, uint32_t tag16, const std::string& value) {
        return wide ? Prop::unicode(tag16, value) : Prop::string8(tag8, value);
    };
    return {{text(kTagDisplayName8, kTagDisplayName16, "Bob Jones"),
             text(kTagEmailAddress8, kTagEmailAddress16, "bob@example.com"),
             Prop::int32(kTagRecipientType, 1)},
            {text(kTagDisplayName8, kTagDisplayName16, "Cy"),
             text(kTagSmtpAddress8, kTagSmtpAddress16, "cy@example.com"),
             Prop::int32(kTagRecipientType, 2)}};
}

// 16-bit strings, a compressed RTF body, a plain body, attachments of both
// kinds of data.
Bytes wideRtfMessage() {
    return buildMessage(
        {.oemCodePage = 1252,
         .messageClass = "IPM.Note",
         .body = "Plain body",
         .props = {Prop::unicode(kTagSubject16, "Budget \xC3\xA9t\xC3\xA9"),
                   Prop::unicode(kTagSentRepresentingName16, "Ann Smith"),
                   Prop::unicode(kTagSentRepresentingEmail16, "ann@example.com"),
                   Prop::time(kTagClientSubmitTime, 0x01C9CC5E12345678ull), Prop::int32(kTagImportance, 2),
                   Prop::binary(kTagRtfCompressed, compressRtf(sampleRtfText(3, 900)))},
         .recipients = recipientRows(true),
         .attachments = {{.title = "report.txt",
                          .data = bytesOf("first attachment"),
                          .props = {Prop::int32(kTagAttachMethod, 1),
                                    Prop::unicode(kTagAttachLongFilename16, "dir\\Report \xC3\xA9.txt"),
                                    Prop::time(kTagLastModificationTime, 0x01C9CC5E00000000ull)}},
                         {.props = {Prop::int32(kTagAttachMethod, 1),
                                    Prop::binary(kTagAttachDataBinary, patternBytes(5000))}}}});
}

// 8-bit strings with a message code page, an HTML body beside the RTF one.
Bytes htmlMessage() {
    return buildMessage(
        {.messageClass = "IPM.Note",
         .props = {Prop::string8(kTagSubject8, "<Offer> & \"more\""),
                   Prop::string8(kTagSenderName8, "Sales"), Prop::string8(kTagSenderEmail8, "s@example.com"),
                   Prop::int32(kTagMessageCodepage, 1252), Prop::int32(kTagInternetCodepage, 65001),
                   Prop::binary(kTagHtml, bytesOf("<html><body><p>Hello</p></body></html>")),
                   Prop::binary(kTagRtfCompressed, compressRtf(sampleRtfText(4, 300)))},
         .recipients = recipientRows(false),
         .attachments = {{.title = "a.bin", .data = patternBytes(9000, 1),
                          .props = {Prop::int32(kTagAttachMethod, 1)}}}});
}

const Bytes kPackagePayload = patternBytes(700, 5);

// An OLE package beside a linked object and a plain attachment.
Bytes oleMessage() {
    OlePackage package;
    package.payload = kPackagePayload;
    Bytes packageStorage = buildCfb({{"\x01" "CompObj", compObjStream("Package")},
                                     {"\x01" "Ole10Native", ole10NativePackage(package).bytes}});
    Bytes linkStorage = buildCfb({{"\x01" "Ole", oleLinkStream(OleLink{}).bytes}});
    auto object = [](const Bytes& storage) {
        Bytes value(16, 0x11);
        value.insert(value.end(), storage.begin(), storage.end());
        return Prop::raw(kTagAttachDataObject, {value});
    };
    return buildMessage({.body = "See the objects",
                         .props = {Prop::string8(kTagSubject8, "Objects")},
                         .attachments = {{.props = {Prop::int32(kTagAttachMethod, 6), object(packageStorage)}},
                                         {.props = {Prop::int32(kTagAttachMethod, 6), object(linkStorage)}},
                                         {.title = "plain.txt", .data = bytesOf("plain")}}});
}

struct RichStream {
    const char* name;
    Bytes bytes;
};

std::vector<RichStream> richStreams() {
    return {{"16-bit strings and RTF", wideRtfMessage()},
            {"HTML and 8-bit strings", htmlMessage()},
            {"OLE objects", oleMessage()}};
}

std::string describe(const SessionReport& report) {
    std::string text;
    for (const std::string& line : report.problems) text += line + "\n";
    return text;
}

enum class Fault { kHostAllocation, kResultAllocation, kIoCall };

TEST(ModuleSweep, FaultFreeSessionsAreClean) {
    for (const RichStream& stream : richStreams()) {
        SessionReport report = runSession(stream.bytes);
        EXPECT_TRUE(report.problems.empty()) << stream.name << "\n" << describe(report);
        EXPECT_GE(report.extractions, 24u) << stream.name;
        EXPECT_GT(report.hostRequests, 0u) << stream.name;
        EXPECT_GT(report.resultRequests, 0u) << stream.name;
        EXPECT_GT(report.ioCalls, 0u) << stream.name;
    }
    // The sessions reach the far ends: the package unpacked by the OLE
    // library, the rendered message and the raw attachment.
    SessionReport ole = runSession(oleMessage());
    ASSERT_EQ(ole.plainOutputs.size(), 4u);
    EXPECT_EQ(ole.plainOutputs[1], kPackagePayload);
    EXPECT_EQ(ole.plainOutputs[3], bytesOf("plain"));
    SessionReport wide = runSession(wideRtfMessage());
    ASSERT_EQ(wide.plainOutputs.size(), 3u);
    EXPECT_EQ(wide.plainOutputs[2], patternBytes(5000));
}

TEST(ModuleSweep, EveryFaultInTurn) {
    for (const RichStream& stream : richStreams()) {
        SessionReport whole = runSession(stream.bytes);
        for (Fault fault : {Fault::kHostAllocation, Fault::kResultAllocation, Fault::kIoCall}) {
            uint64_t total = fault == Fault::kHostAllocation     ? whole.hostRequests
                             : fault == Fault::kResultAllocation ? whole.resultRequests
                                                                 : whole.ioCalls;
            // A fault early on can make the rest of the session longer (a
            // different path), so the sweep runs until a run meets no fault.
            for (uint64_t n = 1;; ++n) {
                SessionFaults faults;
                (fault == Fault::kHostAllocation     ? faults.refuseHostRequest
                 : fault == Fault::kResultAllocation ? faults.refuseResultRequest
                                                     : faults.failIoCall) = n;
                SessionReport report = runSession(stream.bytes, faults);
                ASSERT_TRUE(report.problems.empty())
                    << stream.name << ", fault kind " << static_cast<int>(fault) << " at " << n << " of "
                    << total << "\n" << describe(report);
                uint64_t reached = fault == Fault::kHostAllocation     ? report.hostRequests
                                   : fault == Fault::kResultAllocation ? report.resultRequests
                                                                       : report.ioCalls;
                if (reached < n) break;
            }
        }
    }
}

}  // namespace
}  // namespace tneftest
