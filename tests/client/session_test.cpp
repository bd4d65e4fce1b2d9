// The client over a module linked into the program, with nothing left
// allocated after any test: embedded messages opened and extracted, and the
// readable bodies (which stored body each form comes from, the summary
// header in each form).
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "client/html_text/html_text.h"
#include "client/readable_body.h"
#include "client/tnef_client.h"
#include "tests/support/lzfu_compressor.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

using namespace tnefclient;

constexpr uint64_t kSentTime = 0x01C9CCA1F345AB00ull;  // 2009-05-04T10:20:30Z

Prop rtfBody(const std::string& rtf) { return Prop::binary(kTagRtfCompressed, compressRtf(bytesOf(rtf))); }

struct Rendered {
    ReadableBody body;
    std::string output;
};

class ClientSession : public ::testing::Test {
protected:
    // Opens `stream` in `session`.
    void open(Session& session, const Bytes& stream) {
        std::string error;
        EXPECT_EQ(session.openBytes(stream, {}, &error), Opened::kOk) << error;
    }
    // The message of `plan`; one without properties gets a subject, so
    // that the module can name it.
    Rendered render(MessageLayout plan, ReadableRequest request) {
        if (plan.props.empty() || plan.props[0].tag != kTagSubject8) {
            plan.props.insert(plan.props.begin(), Prop::string8(kTagSubject8, "S"));
        }
        Session session(module_, host_.context());
        open(session, buildMessage(plan));
        tnefrtf::StringSink out;
        Rendered rendered{writeReadableBody(session, session.messageIndex(), request, out), ""};
        rendered.output = out.text;
        return rendered;
    }
    void TearDown() override { EXPECT_EQ(host_.memory().leakReport(), ""); }

    ReaderModule module_ = ReaderModule::linked(&tnefGetContainerReaderInterfaceEx, TNEF_BUILD_DIR);
    tnefhost::PosixHost host_;
};

// An embedded message opened, its subfiles extracted to memory and to files.
// (The tool's tests list and extract embedded messages at every depth.)
TEST_F(ClientSession, EmbeddedMessagesAreOpenedAndExtracted) {
    Bytes second = noteMessage("Inner", "second body", {{"b.txt", bytesOf("BB"), {}}});
    Session session(module_, host_.context());
    open(session, noteMessage("Outer", "first body", {{"a.txt", bytesOf("A"), {}}, embeddedMessage("Fwd", second)}));
    Session child(module_, host_.context());
    std::string error;
    ASSERT_EQ(child.openEmbedded(session, 2, &error), Opened::kOk) << error;
    EXPECT_EQ(child.depth(), 1);
    Bytes bytes;
    EXPECT_EQ(child.extractToMemory(1, &bytes).status, kTnefOk);
    EXPECT_EQ(bytes, bytesOf("BB"));
    ExtractSettings bare{BodyChoice::kText, true};
    EXPECT_EQ(child.extractToMemory(child.messageIndex(), &bytes, bare).status, kTnefOk);
    EXPECT_EQ(bytes, bytesOf("second body"));

    auto file = std::filesystem::temp_directory_path() / ("tnef-client-" + std::to_string(::getpid()));
    EXPECT_EQ(child.extractToFile(1, file.string()).status, kTnefOk);
    EXPECT_EQ(readFile(file.string()), bytesOf("BB"));
    std::filesystem::remove(file);
    EXPECT_EQ(child.extractToFile(1, (file / "b.txt").string()).status, kTnefOutputUnusable);
}

// (The corpus checks of the tool cover RTF that encapsulates text, native RTF
// and a text body beside RTF.)
TEST_F(ClientSession, EachFormComesFromWhatTheMessageStores) {
    const std::string htmlInRtf =
        "{\\rtf1\\ansi\\ansicpg1252\\fromhtml1 {\\*\\htmltag19 <html>}{\\*\\htmltag50 <body>}"
        "{\\*\\htmltag64 <p>}Caf\\'e9 {\\*\\htmltag84 <a href=\"https://x.example/\">}site"
        "{\\*\\htmltag92 </a>}{\\*\\htmltag72 </p>}{\\*\\htmltag58 </body>}{\\*\\htmltag27 </html>}}";
    const std::string storedHtml =
        "<html><head><title>T</title></head><body><p>Gr\xFC\xDF" "e &amp; <b>you</b></p>"
        "<script>alert(1)</script></body></html>";
    struct Case {
        const char* what;
        MessageLayout plan;
        ReadableForm autoForm;
        BodySource textSource, htmlSource;
        std::string text, html;  // the whole output without a header
        std::optional<std::string> htmlCharset;
    } cases[] = {
        {"text body", {.body = "Line <1> & more"}, ReadableForm::kText, BodySource::kText,
         BodySource::kText, "Line <1> & more",
         "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\" />"
         "</head>\r\n<body>\r\n<pre>Line &lt;1&gt; &amp; more</pre>\r\n</body>\r\n</html>\r\n",
         "utf-8"},
        {"stored HTML", {.props = {Prop::binary(kTagHtml, bytesOf(storedHtml)),
                                   Prop::int32(kTagInternetCodepage, 1252)}},
         ReadableForm::kHtml, BodySource::kHtml, BodySource::kHtml, "Grüße & you\r\n", storedHtml,
         "windows-1252"},
        {"RTF with HTML", {.props = {rtfBody(htmlInRtf)}}, ReadableForm::kHtml, BodySource::kRtfHtml,
         BodySource::kRtfHtml, "Café site [https://x.example/]\r\n",
         "<html><body><p>Café <a href=\"https://x.example/\">site</a></p></body></html>", "utf-8"},
        {"no body", {}, ReadableForm::kText, BodySource::kNone, BodySource::kNone, "", "",
         std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ReadableRequest request;
        request.header = false;
        request.htmlToText = libxmlHtmlToText;
        Rendered chosen = render(c.plan, request);
        EXPECT_EQ(chosen.body.form, c.autoForm);
        request.form = ReadableForm::kText;
        Rendered text = render(c.plan, request);
        EXPECT_EQ(text.body.status, kTnefOk);
        EXPECT_EQ(text.body.source, c.textSource);
        EXPECT_EQ(text.output, c.text);
        request.form = ReadableForm::kHtml;
        Rendered html = render(c.plan, request);
        EXPECT_EQ(html.body.source, c.htmlSource);
        EXPECT_EQ(html.body.htmlCharset, c.htmlCharset);
        EXPECT_NE(html.output.find(c.html), std::string::npos) << html.output;
        EXPECT_EQ(html.output.find("\\rtf"), std::string::npos) << html.output;
    }
    // Without a way to make text of HTML, or to put text into HTML, the
    // form is not given: nothing is written.
    ReadableRequest bare;
    bare.header = false;
    bare.form = ReadableForm::kText;
    Rendered noText = render(cases[1].plan, bare);
    EXPECT_EQ(noText.body.source, BodySource::kNone);
    EXPECT_EQ(noText.output, "");
    EXPECT_EQ(render(cases[2].plan, bare).output, "Café site");  // as an RTF reader shows it
    bare.form = ReadableForm::kHtml;
    bare.textAsHtml = false;
    EXPECT_EQ(render(cases[0].plan, bare).body.source, BodySource::kNone);
}

TEST_F(ClientSession, TheHeaderKeepsTheFormOfTheBody) {
    MessageLayout plan;
    plan.props = {Prop::string8(kTagSubject8, "Q&A <today>"), Prop::time(kTagClientSubmitTime, kSentTime),
                  Prop::int32(kTagImportance, 2), Prop::string8(kTagSentRepresentingName8, "Ann"),
                  Prop::string8(kTagSentRepresentingEmail8, "ann@example.com"),
                  rtfBody("{\\rtf1\\ansi Body\\par}")};
    plan.attachments = {{"a.pdf", bytesOf("A"), {}}, {"b.txt", bytesOf("B"), {}}};
    // (Parts of the text form's header: the tool's body tests and its corpus checks.)
    ReadableRequest request;
    request.form = ReadableForm::kHtml;
    std::string html = render(plan, request).output;
    EXPECT_EQ(html.substr(0, html.find("<!DOCTYPE")),
              "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\" />"
              "</head>\r\n<body>\r\n<p><font face=\"Arial Unicode MS\" size=2>\r\n"
              "<b>From: </b>&quot;Ann&quot; &lt;ann@example.com&gt;<br>\r\n"
              "<b>Sent: </b>Mon May 04 10:20:30 2009<br>\r\n<b>Subject: </b>Q&amp;A &lt;today&gt;<br>\r\n"
              "<b>Importance: </b>High<br>\r\n<b>Attachments: </b>a.pdf; b.txt<br>\r\n"
              "</font></p>\r\n</body>\r\n</html>\r\n");
}

}  // namespace
}  // namespace tneftest
