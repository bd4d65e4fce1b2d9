// The client's text output: values shown as one line of text (times in ISO
// 8601 UTC whatever the day of the year, binaries as hex cut after 32 bytes),
// the HTML-to-text rules, and the sinks a body flows through.
#include <gtest/gtest.h>

#include "client/element_values.h"
#include "client/html_text/html_text.h"
#include "client/output_sinks.h"
#include "host/posix_host.h"
#include "tests/support/tnef_writer.h"

namespace tneftest {
namespace {

using namespace tnefclient;

Element timeElement(uint64_t ticks) {
    Bytes bytes;
    putLe64(bytes, ticks);
    return Element{true, 0, kElementTime, std::nullopt, 0, bytes};
}

TEST(ElementValues, TimesAndBinariesAsText) {
    struct Case {
        Element element;
        std::string text;
    } cases[] = {
        {timeElement(10000000), "1601-01-01T00:00:01Z"},
        {timeElement(125963423990000000), "2000-02-29T23:59:59Z"},
        {timeElement(125963424000000000), "2000-03-01T00:00:00Z"},  // the first day of the year it counts from
        {{true, 0, kElementBinary, std::nullopt, 0, {0x0F, 0xA5, 0x00}}, "0fa500"},
        {{true, 0, kElementBinary, std::nullopt, 0, Bytes(33, 0x11)}, std::string(64, '1') + "... (33 bytes)"},
    };
    tnefhost::PosixHost host;
    for (const Case& c : cases) EXPECT_EQ(elementText(host.context(), c.element, 0), c.text);
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
