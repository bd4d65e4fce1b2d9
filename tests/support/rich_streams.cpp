#include "tests/support/rich_streams.h"

#include "tests/support/cfb_writer.h"
#include "tests/support/lzfu_compressor.h"

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

}  // namespace

Bytes packagePayload() {
    return patternBytes(700, 5);
}

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

Bytes oleMessage() {
    OlePackage package;
    package.payload = packagePayload();
    Bytes packageStorage = buildCfb({{"\x01" "CompObj", compObjStream("Package")},
                                     {"\x01" "Ole10Native", ole10NativePackage(package).bytes}});
    Bytes linkStorage = buildCfb({{"\x01" "Ole", oleLinkStream(OleLink{}).bytes}});
    auto object = [](const Bytes& storage) {
        return Prop::raw(kTagAttachDataObject, {oleObjectValue(storage)});
    };
    return buildMessage({.body = "See the objects",
                         .props = {Prop::string8(kTagSubject8, "Objects")},
                         .attachments = {{.props = {Prop::int32(kTagAttachMethod, 6), object(packageStorage)}},
                                         {.props = {Prop::int32(kTagAttachMethod, 6), object(linkStorage)}},
                                         {.title = "plain.txt", .data = bytesOf("plain")}}});
}

std::vector<RichStream> richStreams() {
    return {{"16-bit strings and RTF", wideRtfMessage()},
            {"HTML and 8-bit strings", htmlMessage()},
            {"OLE objects", oleMessage()}};
}

}  // namespace tneftest
