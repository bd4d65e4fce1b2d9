// The HTML summary header, whole and byte for byte.
#include <gtest/gtest.h>

#include <functional>

#include "render/html_summary_field.h"
#include "tests/render/summary_header_support.h"

namespace tneftest {
namespace {

using namespace summaryheader;

std::string head(const std::string& charset) {
    return "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html" +
           (charset.empty() ? "" : "; charset=" + charset) +
           "\" /></head>\r\n<body>\r\n<p><font face=\"Arial Unicode MS\" size=2>\r\n";
}
const std::string kPlainHead = head("");
const std::string kClose = "</font></p>\r\n</body>\r\n</html>\r\n";

Adjust charsets(CharsetId declared, CharsetId charset) {
    return [=](OpenedStream& s) {
        objectAt(s.container, 0)->declaredCharset = declared;
        objectAt(s.container, 0)->charset = charset;
    };
}

TEST(HtmlSummary, WholeHeaders) {
    MessageLayout full = withProps(
        {Prop::string8(kTagSentRepresentingName8, "Alice Smith"),
         Prop::string8(kTagSentRepresentingEmail8, "alice@example.com"),
         Prop::time(kTagClientSubmitTime, kSent2006), Prop::string8(kTagSubject8, "Caf\xE9 & plan"),
         Prop::int32(kTagImportance, 2)},
        {{std::nullopt, Bytes{1}, {Prop::string8(kTagAttachLongFilename8, "C:\\docs\\report.pdf")}},
         {"notes.txt", Bytes{2}, {}},
         {std::nullopt, Bytes{3}, {Prop::unicode(kTagAttachLongFilename16, "r\xC3\xA9s.doc")}},
         {std::nullopt, Bytes{4}, {}},
         {"t.txt", Bytes{5}, {Prop::raw(kTagAttachLongFilename16, {Bytes(4, 0)})}},
         {"u.txt", Bytes{6}, {Prop::raw(kTagAttachLongFilename8, {Bytes(2, 0)})}}});
    full.oemCodePage = 1252;
    MessageLayout bare{};
    // 5000 units of mixed widths run over the flush mark several times.
    const uint16_t units[] = {0x41, 0x4E2D, 0x7F, 0xFFFF, 0x3B1};
    std::string longText, references;
    for (int i = 0; i < 5000; ++i) {
        longText += {static_cast<char>(units[i % 5] & 0xFF), static_cast<char>(units[i % 5] >> 8)};
        references += "&#" + std::to_string(units[i % 5]);
    }
    auto importance = [](int32_t value) { return withProps({Prop::int32(kTagImportance, value)}); };
    const std::vector<HeaderCase> cases = {
        {"8-bit through the host, names of every form", full,
         [](OpenedStream& s) {
             setSlot(s, 2, kElementText8, "Bob <b@x>", "To");
             setSlot(s, 3, kElementText16, wide("Zo\xC3\xAB"), "Cc");
             setSlot(s, 4, kElementText8, "<<<<", "Bcc");  // escaped, it outgrows its target: cut
         },
         head("windows-1252") + "<b>From: </b>\"Alice Smith\" &lt;alice@example.com><br>\r\n"
             "<b>Sent: </b>Mon Jan 02 03:04:05 2006<br>\r\n<b>To: </b>Bob &lt;b@x><br>\r\n"
             "<b>Cc: </b>&#90&#111&#235<br>\r\n<b>Bcc: </b>&lt;&lt;<br>\r\n<b>Subject: </b>Caf\xE9 & plan<br>\r\n"
             "<b>Importance: </b>High<br>\r\n"
             "<b>Attachments: </b>report.pdf; notes.txt<b>; </b>&#114&#233&#115&#46&#100&#111&#99; zd4.tmp" +
             kClose},
        {"no transformation service, no attachments: closed twice",
         withProps({Prop::string8(kTagSentRepresentingName8, "Al"), Prop::string8(kTagSentRepresentingEmail8, "a@x"),
                    Prop::int32(kTagImportance, 0)}),
         [](OpenedStream& s) { s.host.removeTransformText(); },
         kPlainHead + "<b>From: </b>\"Al\" <a@x><br>\r\n<b>Importance: </b>Low<br>\r\n" + kClose + kClose},
        {"charset 5", bare, charsets(0, 5), head("windows-1250") + kClose},
        {"declared 51, charset 5", bare, charsets(51, 5), head("windows-1250") + kClose},
        {"declared ahead of charset", bare, charsets(94, 7), head("gb18030") + kClose},
        {"declared 50 has no name", bare, charsets(50, 0), kPlainHead + kClose},
        {"16-bit everywhere, a 16-bit first name takes the bold label",
         withProps({}, {{std::nullopt, Bytes{1}, {Prop::unicode(kTagAttachLongFilename16, "x")}},
                        {std::nullopt, Bytes{2}, {}}}),
         [](OpenedStream& s) {
             charsets(51, 51)(s);
             setSlot(s, 0, kElementText16, wide(std::string("Zo\xC3\xAB\0", 4)), "From");
         },
         kPlainHead + "<b>From: </b>&#90&#111&#235<br>\r\n<b>Attachments: </b>&#120; zd2.tmp" + kClose},
        {"empty, misnamed, odd and paired values", bare,
         [](OpenedStream& s) {
             setSlot(s, 0, kElementText16, std::string(6, '\0'), "From");
             setSlot(s, 2, kElementText8, std::string(3, '\0'), "To");
             setSlot(s, 3, kElementText8, "x", "To");
             setSlot(s, 4, kElementText16, std::string("A\0B", 3), "Bcc");
             setSlot(s, 5, kElementText16, std::string("\x3D\xD8\x00\xDE\0\0", 6), "Subject");
             setSlot(s, 6, kElementText8, "2", "Priority");  // not a number: no line
         },
         kPlainHead + "<br>\r\n<br>\r\n<b>Bcc: </b>&#65<br>\r\n<b>Subject: </b>&#55357&#56832<br>\r\n" + kClose},
        {"importance 1", importance(1), nullptr, kPlainHead + "<b>Importance: </b>Normal<br>\r\n" + kClose + kClose},
        {"importance 5", importance(5), nullptr, kPlainHead + "<b>Importance: </b>Normal<br>\r\n" + kClose + kClose},
        {"buffer of the transformation refused", withProps({Prop::string8(kTagSubject8, "S")}),
         [](OpenedStream& s) { s.host.memory().refuseRequest(1); },
         kPlainHead + "<b>Subject: </b><br>\r\n" + kClose},
        {"a long value", bare, [&](OpenedStream& s) { setSlot(s, 5, kElementText16, longText, "Subject"); },
         kPlainHead + "<b>Subject: </b>" + references + "<br>\r\n" + kClose},
    };
    checkHeaders(cases, tnefWriteHtmlSummaryField);
}

}  // namespace
}  // namespace tneftest
