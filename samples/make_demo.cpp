// Writes samples/demo.tnef: a small but rich message made by our own TNEF
// writer — sender, recipients, a 16-bit subject, text, HTML and compressed
// RTF bodies, a plain attachment and an OLE package.
#include <cstdio>
#include <fstream>
#include <iostream>

#include "tests/support/cfb_writer.h"
#include "tests/support/lzfu_compressor.h"
#include "tests/support/tnef_writer.h"

using namespace tneftest;

namespace {

constexpr uint64_t kSent = 0x01DB3C5A7E2F1000ull;  // 2024-11-21 21:15:29 UTC

Bytes olePackage() {
    OlePackage package;
    package.label = "hello.txt";
    package.sourcePath = "C:\\Users\\ann\\Desktop\\hello.txt";
    package.tempPath = "C:\\Users\\ann\\AppData\\Local\\Temp\\hello.txt";
    package.payload = bytesOf("Hello from inside an OLE package.\n");
    Bytes storage = buildCfb({{"\x01" "CompObj", compObjStream("Package")},
                              {"\x01" "Ole10Native", ole10NativePackage(package).bytes}});
    return oleObjectValue(storage, 0x0C);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make-demo-sample OUTPUT\n";
        return 1;
    }
    const std::string rtf =
        "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0 Arial;}}\\f0\\fs20 "
        "Hi team,\\par\\par The \\b quarterly figures\\b0  are attached.\\par Ann\\par}";
    const std::string html =
        "<html><body><p>Hi team,</p><p>The <b>quarterly figures</b> are attached.</p>"
        "<p>Ann</p></body></html>";
    TnefWriter w;
    w.version().oemCodePage(1252).messageClass("IPM.Note");
    w.body("Hi team,\r\n\r\nThe quarterly figures are attached.\r\n\r\nAnn\r\n");
    w.recipients({{Prop::int32(kTagRecipientType, 1), Prop::unicode(kTagDisplayName16, "Bob Müller"),
                   Prop::unicode(kTagSmtpAddress16, "bob@example.com")},
                  {Prop::int32(kTagRecipientType, 1), Prop::unicode(kTagDisplayName16, "Chloé Durand"),
                   Prop::unicode(kTagEmailAddress16, "chloe@example.com")},
                  {Prop::int32(kTagRecipientType, 2), Prop::unicode(kTagDisplayName16, "Dan Ito"),
                   Prop::unicode(kTagEmailAddress16, "dan@example.com")}});
    w.messageProps({Prop::unicode(kTagSubject16, "Quarterly figures — Q3 €"),
                    Prop::time(kTagClientSubmitTime, kSent), Prop::int32(kTagImportance, 2),
                    Prop::unicode(kTagSentRepresentingName16, "Ann Smith"),
                    Prop::unicode(kTagSentRepresentingEmail16, "ann@example.com"),
                    Prop::string8(kTagBodyHtml8, html, false),
                    Prop::binary(kTagRtfCompressed, compressRtf(bytesOf(rtf)))});
    w.attachRendData().attachTitle("FIGURES.CSV");
    w.attachData(bytesOf("quarter,revenue\nQ1,120\nQ2,135\nQ3,151\n"));
    w.attachmentProps({Prop::int32(kTagAttachMethod, 1),
                       Prop::unicode(kTagAttachLongFilename16, "figures.csv"),
                       Prop::time(kTagLastModificationTime, kSent)});
    w.attachRendData().attachTitle("Package");
    w.attachmentProps({Prop::int32(kTagAttachMethod, 6), Prop::raw(kTagAttachDataObject, {olePackage()}),
                       Prop::time(kTagCreationTime, kSent)});
    std::ofstream out(argv[1], std::ios::binary);
    out.write(reinterpret_cast<const char*>(w.bytes().data()), static_cast<std::streamsize>(w.bytes().size()));
    return out.good() ? 0 : 1;
}
