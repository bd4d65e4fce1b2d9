// Writes the streams the browser tests load, with the project's TNEF writer:
//
//   make-web-samples DIR            the test samples, into DIR
//   make-web-samples --big MIB FILE  a stream with one attachment of MIB MiB
//
// hostile.tnef   an HTML body that tries to run script and load from the
//                network, with an inline image; a text attachment, an
//                embedded message and the image
// hostile.eml    a MIME message with that stream as its winmail.dat, and
//                the embedded message as a second part, win.dat
// cp932.tnef ... subject, body and attachment name in a double-byte code page
#include <iconv.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "tests/support/cfb_writer.h"
#include "tests/support/tnef_writer.h"

using namespace tneftest;

namespace {

// The HTML body: known words, and everything a message could use to run
// script or reach the network. The page must show the words and do none of it.
constexpr char kHostileHtml[] =
    "<html><head><link rel=\"stylesheet\" href=\"http://127.0.0.1:9/style.css\">"
    "<script>document.title = 'script ran'; parent.postMessage('script ran', '*');"
    "fetch('http://127.0.0.1:9/fetch');</script></head>"
    "<body style=\"background: url(http://127.0.0.1:9/background.png)\">"
    "<p id=\"greeting\">Quarterly figures attached</p><img id=\"logo\" src=\"cid:logo@example.com\">"
    "<img src=\"http://127.0.0.1:9/tracker.png\" onerror=\"parent.postMessage('handler ran', '*')\">"
    "<iframe src=\"http://127.0.0.1:9/frame\"></iframe>"
    "<a href=\"javascript:parent.postMessage('link ran', '*')\">link</a>"
    "</body></html>";

Bytes embeddedMessage() {
    return buildMessage({.messageClass = "IPM.Note",
                         .body = "The forwarded note",
                         .props = {Prop::string8(kTagSubject8, "Inner note")},
                         .attachments = {{.title = "inner.txt", .data = bytesOf("inner file\n"),
                                          .props = {Prop::int32(kTagAttachMethod, 1)}}}});
}

// A 1x1 GIF, shown inline through its content ID.
const std::string kPixel("GIF89a\x01\x00\x01\x00\x80\x00\x00\xff\xff\xff\x00\x00\x00,\x00\x00\x00\x00"
                         "\x01\x00\x01\x00\x00\x02\x02" "D\x01\x00;", 35);

Bytes hostileMessage() {
    return buildMessage(
        {.messageClass = "IPM.Note",
         .body = "Quarterly figures attached (text)",
         .props = {Prop::string8(kTagSubject8, "Figures <b>bold</b> & more"),
                   Prop::string8(kTagSentRepresentingName8, "Ann Smith"),
                   Prop::string8(kTagSentRepresentingEmail8, "ann@example.com"),
                   Prop::int32(kTagImportance, 2),
                   Prop::binary(kTagHtml, bytesOf(kHostileHtml))},
         .attachments = {{.title = "notes.txt", .data = bytesOf("first line\nsecond line\n"),
                          .props = {Prop::int32(kTagAttachMethod, 1)}},
                         {.title = "Inner note",
                          .props = {Prop::int32(kTagAttachMethod, 5),
                                    Prop::raw(kTagAttachDataObject,
                                              {oleObjectValue(embeddedMessage())})}},
                         {.title = "logo.gif", .data = bytesOf(kPixel),
                          .props = {Prop::int32(kTagAttachMethod, 1),
                                    Prop::string8(0x3712001E, "logo@example.com"),
                                    Prop::string8(0x370E001E, "image/gif")}}}});
}

std::string base64(const Bytes& bytes) {
    static const char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (size_t i = 0; i < bytes.size(); i += 3) {
        uint32_t n = bytes[i] << 16;
        if (i + 1 < bytes.size()) n |= bytes[i + 1] << 8;
        if (i + 2 < bytes.size()) n |= bytes[i + 2];
        out += digits[(n >> 18) & 63];
        out += digits[(n >> 12) & 63];
        out += i + 1 < bytes.size() ? digits[(n >> 6) & 63] : '=';
        out += i + 2 < bytes.size() ? digits[n & 63] : '=';
        if ((i / 3 + 1) % 19 == 0) out += "\r\n";
    }
    return out;
}

std::string hostileMail() {
    return "From: Ann Smith <ann@example.com>\r\n"
           "To: Bob <bob@example.com>\r\n"
           "Subject: Figures\r\n"
           "MIME-Version: 1.0\r\n"
           "Content-Type: multipart/mixed; boundary=\"outer\"\r\n\r\n"
           "--outer\r\nContent-Type: text/plain; charset=us-ascii\r\n\r\nSee the attachment.\r\n"
           "--outer\r\nContent-Type: application/ms-tnef; name=\"winmail.dat\"\r\n"
           "Content-Transfer-Encoding: base64\r\n"
           "Content-Disposition: attachment; filename=\"winmail.dat\"\r\n\r\n" +
           base64(hostileMessage()) +
           "\r\n--outer\r\nContent-Type: application/octet-stream; name=\"win.dat\"\r\n"
           "Content-Transfer-Encoding: base64\r\n\r\n" +
           base64(embeddedMessage()) + "\r\n--outer--\r\n";
}

// UTF-8 text in a Windows code page, through glibc's iconv.
std::string encoded(const std::string& utf8, int codePage) {
    std::string name = "CP" + std::to_string(codePage);
    iconv_t descriptor = iconv_open(name.c_str(), "UTF-8");
    if (descriptor == reinterpret_cast<iconv_t>(-1)) {
        std::fprintf(stderr, "make-web-samples: no codec %s\n", name.c_str());
        std::exit(1);
    }
    std::string out(utf8.size() * 2 + 8, '\0');
    char* from = const_cast<char*>(utf8.data());
    size_t fromLeft = utf8.size();
    char* to = out.data();
    size_t toLeft = out.size();
    if (iconv(descriptor, &from, &fromLeft, &to, &toLeft) == static_cast<size_t>(-1)) {
        std::fprintf(stderr, "make-web-samples: cannot write the text in %s\n", name.c_str());
        std::exit(1);
    }
    iconv_close(descriptor);
    out.resize(out.size() - toLeft);
    return out;
}

struct CodePageSample {
    int codePage;
    const char* subject;
    const char* attachmentName;
};

// Kept in step with web/tests/viewer.test.mjs.
constexpr CodePageSample kCodePageSamples[] = {
    {932, "会議の議事録", "議事録.txt"},
    {936, "会议纪要", "纪要.txt"},
    {949, "회의록 요약", "회의록.txt"},
    {950, "會議記錄", "記錄.txt"},
    {1251, "Протокол встречи", "протокол.txt"},
};

Bytes codePageMessage(const CodePageSample& sample) {
    std::string subject = encoded(sample.subject, sample.codePage);
    return buildMessage(
        {.oemCodePage = static_cast<uint32_t>(sample.codePage),
         .messageClass = "IPM.Note",
         .body = subject + "\r\n",
         .props = {Prop::string8(kTagSubject8, subject),
                   Prop::int32(kTagMessageCodepage, sample.codePage)},
         .attachments = {{.title = encoded(sample.attachmentName, sample.codePage),
                          .data = bytesOf("text\n"),
                          .props = {Prop::int32(kTagAttachMethod, 1)}}}});
}

void write(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) {
        std::fprintf(stderr, "make-web-samples: cannot write %s\n", path.c_str());
        std::exit(1);
    }
}

void write(const std::string& path, const Bytes& bytes) {
    write(path, std::string(bytes.begin(), bytes.end()));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::string(argv[1]) == "--big") {
        size_t mib = std::strtoul(argv[2], nullptr, 10);
        Bytes data(mib << 20);
        for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>(i * 7 + (i >> 12));
        write(argv[3], buildMessage({.messageClass = "IPM.Note",
                                     .body = "A large attachment",
                                     .props = {Prop::string8(kTagSubject8, "Large")},
                                     .attachments = {{.title = "large.bin", .data = data,
                                                      .props = {Prop::int32(kTagAttachMethod, 1)}},
                                                     {.title = "small.txt", .data = bytesOf("small\n"),
                                                      .props = {Prop::int32(kTagAttachMethod, 1)}}}}));
        return 0;
    }
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-web-samples DIR | make-web-samples --big MIB FILE\n");
        return 1;
    }
    std::string dir = argv[1];
    write(dir + "/hostile.tnef", hostileMessage());
    write(dir + "/hostile.eml", hostileMail());
    for (const CodePageSample& sample : kCodePageSamples) {
        write(dir + "/cp" + std::to_string(sample.codePage) + ".tnef", codePageMessage(sample));
    }
    return 0;
}
