// The HTML and RTF summary headers, whole and byte for byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <functional>

#include "render/html_summary_field.h"
#include "render/rtf_summary_field.h"
#include "tests/render/render_support.h"

namespace tneftest {
namespace {

using namespace render;

// One header case: a message, a change made to it after open, and the
// eight lines the writer must give.
using Adjust = std::function<void(OpenedStream&)>;
struct HeaderCase {
    const char* name;
    MessageLayout plan;
    Adjust adjust;
    std::string expected;
};

// Writes the eight lines of each case as one text; the host's current
// charset stays as it was.
void checkHeaders(const std::vector<HeaderCase>& cases,
                  int32_t (*write)(TnefContainer*, TnefObject*, int32_t, IoObject*)) {
    setenv("TZ", "UTC", 1);
    tzset();
    for (const HeaderCase& c : cases) {
        SCOPED_TRACE(c.name);
        OpenedStream s(buildMessage(c.plan));
        ASSERT_EQ(s.status, 0);
        if (c.adjust) c.adjust(s);
        tnefhost::MemoryIo output;
        const CharsetId before = s.host.context()->currentCharset;
        for (int32_t index = 0; index < 8; ++index) {
            EXPECT_EQ(write(s.container, objectAt(s.container, 0), index, output.io()), 0);
        }
        EXPECT_EQ(s.host.context()->currentCharset, before);
        EXPECT_EQ(output.text(), c.expected);
        EXPECT_EQ(s.close(), "");
    }
}

std::string htmlHead(const std::string& charset) {
    return "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html" +
           (charset.empty() ? "" : "; charset=" + charset) +
           "\" /></head>\r\n<body>\r\n<p><font face=\"Arial Unicode MS\" size=2>\r\n";
}
const std::string kHtmlPlainHead = htmlHead("");
const std::string kHtmlClose = "</font></p>\r\n</body>\r\n</html>\r\n";

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
    const std::vector<HeaderCase> cases = {
        {"8-bit through the host, names of every form", full,
         [](OpenedStream& s) {
             setSlot(s, 2, kElementText8, "Bob <b@x>", "To");
             setSlot(s, 3, kElementText16, wide("Zo\xC3\xAB"), "Cc");
             setSlot(s, 4, kElementText8, "<<<<", "Bcc");  // escaped, it outgrows its target: cut
         },
         htmlHead("windows-1252") + "<b>From: </b>\"Alice Smith\" &lt;alice@example.com><br>\r\n"
             "<b>Sent: </b>Mon Jan 02 03:04:05 2006<br>\r\n<b>To: </b>Bob &lt;b@x><br>\r\n"
             "<b>Cc: </b>&#90&#111&#235<br>\r\n<b>Bcc: </b>&lt;&lt;<br>\r\n<b>Subject: </b>Caf\xE9 & plan<br>\r\n"
             "<b>Importance: </b>High<br>\r\n"
             "<b>Attachments: </b>report.pdf; notes.txt<b>; </b>&#114&#233&#115&#46&#100&#111&#99; zd4.tmp" +
             kHtmlClose},
        {"no transformation service, no attachments: closed twice",
         withProps({Prop::string8(kTagSentRepresentingName8, "Al"), Prop::string8(kTagSentRepresentingEmail8, "a@x"),
                    Prop::int32(kTagImportance, 0)}),
         [](OpenedStream& s) { s.host.removeTransformText(); },
         kHtmlPlainHead + "<b>From: </b>\"Al\" <a@x><br>\r\n<b>Importance: </b>Low<br>\r\n" + kHtmlClose + kHtmlClose},
        {"declared 51, charset 5", bare, charsets(51, 5), htmlHead("windows-1250") + kHtmlClose},
        {"declared ahead of charset", bare, charsets(94, 7), htmlHead("gb18030") + kHtmlClose},
        {"declared 50 has no name", bare, charsets(50, 0), kHtmlPlainHead + kHtmlClose},
        {"empty, misnamed, odd and paired values", bare,
         [](OpenedStream& s) {
             setSlot(s, 0, kElementText16, std::string(6, '\0'), "From");
             setSlot(s, 2, kElementText8, std::string(3, '\0'), "To");
             setSlot(s, 3, kElementText8, "x", "To");
             setSlot(s, 4, kElementText16, std::string("A\0B", 3), "Bcc");
             setSlot(s, 5, kElementText16, std::string("\x3D\xD8\x00\xDE\0\0", 6), "Subject");
             setSlot(s, 6, kElementText8, "2", "Priority");  // not a number: no line
         },
         kHtmlPlainHead + "<br>\r\n<br>\r\n<b>Bcc: </b>&#65<br>\r\n<b>Subject: </b>&#55357&#56832<br>\r\n" + kHtmlClose},
        {"buffer of the transformation refused", withProps({Prop::string8(kTagSubject8, "S")}),
         [](OpenedStream& s) { s.host.memory().refuseRequest(1); },
         kHtmlPlainHead + "<b>Subject: </b><br>\r\n" + kHtmlClose},
    };
    checkHeaders(cases, tnefWriteHtmlSummaryField);
}

std::string rtfHead(int codePage, int fontCharset) {
    return "{\\rtf1\\ansi\\ansicpg" + std::to_string(codePage) + "\\deff0 {\\fonttbl{\\f0\\fcharset" +
           std::to_string(fontCharset) + " Arial Unicode MS;}}\\f0\\fs20";
}
const std::string kRtfHead1252 = rtfHead(1252, 0);
const std::string kRtfEnd = "\\par \\par ";

Adjust charset(CharsetId id, bool shiftJisDefault = false) {
    return [=](OpenedStream& s) {
        objectAt(s.container, 0)->charset = id;
        if (!shiftJisDefault) return;
        s.host.context()->hostSetDefaultCharset = [](HostContext* host, int32_t) {
            host->currentCharset = kCharsetShiftJis;
        };
        s.host.context()->currentCharset = 9;  // must be back after every call
    };
}

TEST(RtfSummary, WholeHeaders) {
    MessageLayout typical{1252, std::nullopt, std::nullopt,
                        {Prop::string8(kTagSentRepresentingName8, "Al"), Prop::string8(kTagSentRepresentingEmail8, "a@x"),
                         Prop::time(kTagClientSubmitTime, kSent2006), Prop::int32(kTagImportance, 2)},
                        std::nullopt,
                        {{"{x}.txt", Bytes{1}, {}},
                         {std::nullopt, Bytes{2}, {Prop::string8(kTagAttachLongFilename8, "a{b}.txt")}},
                         {std::nullopt, Bytes{3}, {Prop::unicode(kTagAttachLongFilename16, "\xE6\x97\xA5")}}}};
    MessageLayout normal{std::nullopt, std::nullopt, std::nullopt, {Prop::int32(kTagImportance, 1)}};
    MessageLayout bare{};
    // 5000 units with escapes run over the flush mark with nothing lost; the
    // count word stays with the first \u of the line.
    const std::string pieces[] = {"a", "}", "\xE4\xB8\xAD"}, encoded[] = {"a", "\\}", "\\u20013 ? "};
    std::string longText, longLine = "\\b Subject: \\b0 ";
    for (int i = 0; i < 5000; ++i) {
        longText += wide(pieces[i % 3]);
        longLine += (i == 2 ? "\\uc2" : "") + encoded[i % 3];
    }
    const std::vector<HeaderCase> cases = {
        {"8-bit sender, names of each RTF form", typical, nullptr,
         kRtfHead1252 + "\\b From: \\b0 \"Al\" <a@x>\\par \\b Sent: \\b0 Mon Jan 02 03:04:05 2006\\par "
                     "\\b Importance: \\b0 High\\par"
                     "\\b Attachments: \\b0 {x}.txt; a\\{b\\}.txt; \\uc2\\u26085 ? " + kRtfEnd},
        {"16-bit and 8-bit text in a double-byte charset", bare,
         [](OpenedStream& s) {
             charset(1)(s);
             setSlot(s, 2, kElementText8, "A\x93\xFA\\{}\x93", "To");  // ends in a lead byte
             setSlot(s, 5, kElementText16, wide("\xE6\x97\xA5\xE6\x9C\xAC\xEF\xBC\x81\xEF\xBD\xB1{"), "Subject");
         },
         rtfHead(932, 128) + "\\b To: \\b0 A\\'93\\'fa\\\\\\{\\}\x93\\par "
                          "\\b Subject: \\b0 \\uc2\\u26085\\'93\\'fa\\u26412\\'96\\'7b\\u-255\\'81\\'49\xB1\\{\\par " + kRtfEnd},
        {"empty, misnamed and odd values", normal,
         [](OpenedStream& s) {
             setSlot(s, 0, kElementText16, std::string(4, '\0'), "From");
             setSlot(s, 2, kElementText8, "x", "Cc");
             setSlot(s, 3, kElementText8, std::string(2, '\0'), "Cc");
             setSlot(s, 4, kElementText16, std::string("A\0B", 3), "Bcc");
         },
         kRtfHead1252 + "\\b Cc: \\b0 \\par \\b Bcc: \\b0 A\\par \\b Importance: \\b0 Normal\\par\\par" + kRtfEnd},
        {"a long value", bare,
         [&](OpenedStream& s) { charset(7)(s); setSlot(s, 5, kElementText16, longText, "Subject"); },
         kRtfHead1252 + longLine + "\\par " + kRtfEnd},
        {"charset 0 follows the host's default", bare, charset(0, true), rtfHead(932, 128) + kRtfEnd},
        {"charset 14", bare, charset(14), kRtfHead1252 + kRtfEnd},
    };
    checkHeaders(cases, tnefWriteRtfSummaryField);
}

}  // namespace
}  // namespace tneftest
