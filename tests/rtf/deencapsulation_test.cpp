// HTML and text taken back out of RTF (\fromhtml1, \fromtext): the tags and
// the text outside \htmlrtf, their code pages, what each output form makes
// of each kind of document, and the charset the HTML declares.
#include <gtest/gtest.h>

#include "rtf/meta_charset.h"
#include "tests/rtf/rtf_support.h"

namespace {

using tnefrtf::Encapsulation;
using tnefrtf::OutputForm;

std::string fromHtml(const std::string& body, const std::string& header = "\\ansicpg1252") {
    return "{\\rtf1\\ansi" + header + "\\fromhtml1 \\deff0{\\fonttbl{\\f0 Arial;}{\\f1\\fcharset238 B;}}" +
           "{\\colortbl;\\red0;}" + body + "}";
}

TEST(Deencapsulation, Html) {
    struct Case { std::string rtf; std::string html; };
    const Case cases[] = {
        {fromHtml("{\\*\\htmltag64 <p>}Hello\\~there{\\*\\htmltag72 </p>}"), "<p>Hello\u00A0there</p>"},
        // \htmlrtf regions are the RTF's own, and end with their group; tags
        // inside them still count.
        {fromHtml("{\\*\\htmltag84 &amp;}\\htmlrtf &\\htmlrtf0 x"), "&amp;x"},
        {fromHtml("\\htmlrtf {\\htmlrtf0 a{\\*\\htmltag64 <p>}}b\\htmlrtf0 c"), "a<p>c"},
        {fromHtml("{\\*\\htmltag1 \\par }{\\*\\htmltag0 \\tab x\\line }a\\par b"), "\r\n\tx\r\na\r\nb"},
        {fromHtml("{\\*\\htmltag241 a \\{ b \\} \\\\ }"), "a { b } \\ "},
        // Tags in the document's code page, text in its font's.
        {fromHtml("{\\*\\htmltag84 \\'c0}\\f1\\'c0\\f0\\'c0", "\\ansicpg1251"), "\u0410\u0154\u0410"},
        {fromHtml("{\\*\\htmltag84 \\'82\\'a0\\u8364?}\\u8364?", "\\ansicpg932"), "\u3042\u20AC\u20AC"},
        // \mhtmltag repeats a tag that \htmltag gives; other destinations and
        // hidden text are no HTML.
        {fromHtml("{\\*\\mhtmltag84 <a href=\"x.png\">}{\\*\\htmltag84 <a href=\"cid:x\">}{\\*\\gen g}{\\v h}y"),
         "<a href=\"cid:x\">y"},
        {fromHtml("{\\*\\htmltag241 <meta http-equiv=\"Content-Type\" content=\"text/html; charset=windows-1251\">}"),
         "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\">"},
    };
    for (const Case& c : cases) {
        rtftest::Converted converted = rtftest::convert(c.rtf, OutputForm::kHtml);
        EXPECT_EQ(converted.output, c.html) << c.rtf;
        EXPECT_EQ(converted.result.encapsulation, Encapsulation::kHtml) << c.rtf;
    }
}

// Each output form from each kind of document.
TEST(Deencapsulation, FormsByEncapsulation) {
    const std::string html = fromHtml("{\\*\\htmltag64 <p>}\\htmlrtf {\\b\\htmlrtf0 A&B}\\htmlrtf \\par\\htmlrtf0");
    const std::string text = "{\\rtf1\\ansi\\fromtext \\deff0{\\fonttbl{\\f0 A;}}a <b>\\par\\htmlrtf x\\htmlrtf0 b}";
    struct Case { std::string rtf; OutputForm form; std::string output; Encapsulation encapsulation; };
    const Case cases[] = {
        {html, OutputForm::kHtml, "<p>A&B", Encapsulation::kHtml},
        {html, OutputForm::kText, "A&B\r\n", Encapsulation::kHtml},
        {text, OutputForm::kText, "a <b>\r\nb", Encapsulation::kText},
        {text, OutputForm::kHtml, "<p>a &lt;b&gt;</p>\r\n<p>b</p>\r\n", Encapsulation::kText},
        {"{\\rtf1\\fromhtml0{\\f0}x}", OutputForm::kText, "x", Encapsulation::kNone},
        {"{\\rtf1 t\\fromhtml1 x}", OutputForm::kText, "tx", Encapsulation::kNone},  // too late after text
        // \htmlrtf before the first text hides it as well.
        {"{\\rtf1\\fromtext\\htmlrtf x\\tab\\htmlrtf0 y}", OutputForm::kText, "y", Encapsulation::kText},
    };
    for (const Case& c : cases) {
        rtftest::Converted converted = rtftest::convert(c.rtf, c.form);
        std::string output = c.form == OutputForm::kHtml && c.encapsulation != Encapsulation::kHtml
                                 ? rtftest::htmlBody(c.rtf)
                                 : converted.output;
        EXPECT_EQ(output, c.output) << c.rtf;
        EXPECT_EQ(converted.result.encapsulation, c.encapsulation) << c.rtf;
    }
}

TEST(Deencapsulation, MetaCharsetBecomesUtf8) {
    struct Case { std::string html; std::string rewritten; };
    const Case cases[] = {
        {"<META CHARSET=koi8-r>", "<META CHARSET=utf-8>"},
        {"<meta content='text/html;charset = \"Shift_JIS\"' http-equiv=Content-Type>",
         "<meta content='text/html;charset = \"utf-8\"' http-equiv=Content-Type>"},
        {"<meta name=\"x\" content=\"no charset here\"><p>charset=x</p>",
         "<meta name=\"x\" content=\"no charset here\"><p>charset=x</p>"},
        {"<metadata charset=x><<meta charset=x>", "<metadata charset=x><<meta charset=utf-8>"},
        {"<meta charset=x", "<meta charset=x"},  // never closed: as it was
        {"<meta content=\"" + std::string(5000, 'a') + "; charset=x\">",
         "<meta content=\"" + std::string(5000, 'a') + "; charset=x\">"},
    };
    for (const Case& c : cases) {
        for (size_t chunk : {c.html.size(), size_t{1}}) {
            tnefrtf::StringSink sink;
            tnefrtf::OutputBuffer out(sink);
            tnefrtf::MetaCharsetRewriter rewriter(out);
            for (size_t at = 0; at < c.html.size(); at += chunk) rewriter.write(std::string_view(c.html).substr(at, chunk));
            rewriter.finish();
            out.flush();
            EXPECT_EQ(sink.text, c.rewritten) << c.html.substr(0, 80) << " in chunks of " << chunk;
        }
    }
}

}  // namespace
