// Readable bodies: which stored body each form comes from, the summary
// header in each form, the HTML-to-text rules and the sinks a body flows
// through.
#include <gtest/gtest.h>

#include "client/html_text/html_text.h"
#include "client/output_sinks.h"
#include "client/readable_body.h"
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

class ReadableBodies : public ::testing::Test {
protected:
    // The message of `plan`; one without properties gets a subject, so
    // that the module can name it.
    Rendered render(MessageLayout plan, ReadableRequest request) {
        if (plan.props.empty() || plan.props[0].tag != kTagSubject8) {
            plan.props.insert(plan.props.begin(), Prop::string8(kTagSubject8, "S"));
        }
        Session session(module_, host_.context());
        std::string error;
        EXPECT_EQ(session.openBytes(buildMessage(plan), {}, &error), Opened::kOk) << error;
        tnefrtf::StringSink out;
        Rendered rendered{writeReadableBody(session, session.messageIndex(), request, out), ""};
        rendered.output = out.text;
        return rendered;
    }
    void TearDown() override { EXPECT_EQ(host_.memory().leakReport(), ""); }

    ReaderModule module_ = ReaderModule::linked(&tnefGetContainerReaderInterfaceEx, TNEF_BUILD_DIR);
    tnefhost::PosixHost host_;
};

// (The corpus checks of the tool cover RTF that encapsulates text, native RTF
// and a text body beside RTF.)
TEST_F(ReadableBodies, EachFormComesFromWhatTheMessageStores) {
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

TEST_F(ReadableBodies, TheHeaderKeepsTheFormOfTheBody) {
    MessageLayout plan;
    plan.props = {Prop::string8(kTagSubject8, "Q&A <today>"), Prop::time(kTagClientSubmitTime, kSentTime),
                  Prop::int32(kTagImportance, 2), Prop::string8(kTagSentRepresentingName8, "Ann"),
                  Prop::string8(kTagSentRepresentingEmail8, "ann@example.com"),
                  rtfBody("{\\rtf1\\ansi Body\\par}")};
    plan.attachments = {{"a.pdf", bytesOf("A"), {}}, {"b.txt", bytesOf("B"), {}}};
    ReadableRequest request;
    request.form = ReadableForm::kText;
    EXPECT_EQ(render(plan, request).output,
              "From: \"Ann\" <ann@example.com>\r\nSent: Mon May 04 10:20:30 2009\r\n"
              "Subject: Q&A <today>\r\nImportance: High\r\nAttachments: a.pdf; b.txt\r\n\r\nBody\r\n");
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

TEST(HtmlText, BrowserLayoutRules) {
    struct Case {
        const char* html;
        const char* text;
    } cases[] = {
        {"<p>one</p><p>two</p>", "one\r\ntwo\r\n"},
        {"a<br>b<br><br>c", "a\r\nb\r\n\r\nc\r\n"},
        {"<div>a<br></div><div>b</div>", "a\r\nb\r\n"},
        {"<div>a</div><br>b", "a\r\n\r\nb\r\n"},
        {"<br><p>  lead   and\n\ttrail  </p><br>", "lead and trail\r\n"},
        {"a<b>b</b> <i> c </i>d", "ab c d\r\n"},
        {"x&nbsp;&nbsp;y &lt;&amp;&gt; é&eacute;&#233;&#x263A;", "x  y <&> ééé☺\r\n"},
        {"if (a < b) c", "if (a < b) c\r\n"},
        {"<pre>  keep\n   this  </pre>after", "  keep\r\n   this  \r\nafter\r\n"},
        {"<a href=\"https://example.com/x\">site</a>.", "site [https://example.com/x].\r\n"},
        {"<a href=\"mailto:a@b.c\">a@b.c</a> <a href=\"https://b.c/\">b.c</a> <a href=\"#top\">up</a>",
         "a@b.c b.c up\r\n"},
        {"<a href=\" https://x.y/\n\">\n<img src=x></a>", "[https://x.y/]\r\n"},
        {"<head><title>T</title><style>p{}</style></head><script>s()</script>shown"
         "<template>t</template>", "shown\r\n"},
        {"<table><tr><td>a</td><td>b</td></tr><tr><th>c</th><td>d</td></tr></table>",
         "a\tb\r\nc\td\r\n"},
        {"<ul><li>one<li>two</ul>end", "one\r\ntwo\r\nend\r\n"},
        {"unclosed <b>bold <a href=\"u\">link", "unclosed bold link [u]\r\n"},
        {"", ""},
    };
    for (const Case& c : cases) {
        std::string_view html = c.html;
        for (size_t chunk : {html.size() + 1, size_t{1}}) {
            tnefrtf::StringSink text;
            auto converter = libxmlHtmlToText(text, "utf-8");
            for (size_t at = 0; at < html.size(); at += chunk) converter->write(html.substr(at, chunk));
            EXPECT_TRUE(converter->finish());
            EXPECT_EQ(text.text, c.text) << c.html << " in pieces of " << chunk;
        }
    }
    // The charset given holds over the document's own declaration.
    tnefrtf::StringSink text;
    auto converter = libxmlHtmlToText(text, "windows-1251");
    converter->write("<meta charset=\"utf-8\"><p>\xCF\xF0\xE8\xE2\xE5\xF2</p>");
    converter->finish();
    EXPECT_EQ(text.text, "Привет\r\n");
}

TEST(OutputSinks, TextIsMadeUtf8AndConvertedWhateverTheWritesCut) {
    struct Case {
        std::string in;
        CharsetId charset;
        std::string out;
    } cases[] = {
        {"Grüße ☃", kCharsetUtf8, "Grüße ☃"},
        {"Gr\xFC\xDF" "e \x80", kCharsetUtf8, "Grüße €"},  // not UTF-8: read as windows-1252
        {"cut \xE2\x98", kCharsetUtf8, "cut â˜"},          // a character the text ends inside
        {"Grüße ☃", kCharsetWindows1252, "Gr\xFC\xDF" "e ?"},
    };
    tnefhost::PosixHost host;
    for (const Case& c : cases) {
        for (size_t chunk : {c.in.size() + 1, size_t{1}}) {
            tnefrtf::StringSink out;
            CharsetSink converted(out, host.context(), c.charset);
            Utf8Sink utf8(converted);
            for (size_t at = 0; at < c.in.size(); at += chunk) utf8.write(c.in.substr(at, chunk));
            EXPECT_TRUE(utf8.finish() && converted.finish());
            EXPECT_EQ(out.text, c.out) << c.in << " in pieces of " << chunk;
        }
    }
}

}  // namespace
}  // namespace tneftest
