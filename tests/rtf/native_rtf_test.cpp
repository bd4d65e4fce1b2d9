// Native RTF to text and to HTML, on small documents: what is text and what
// is skipped, characters and code pages, fields, lists, tables, and the
// HTML's formatting, escaping and links.
#include <gtest/gtest.h>

#include "tests/rtf/rtf_support.h"

namespace {

using rtftest::htmlBody;
using rtftest::text;

struct Case {
    std::string rtf;
    std::string expected;
};

TEST(NativeRtf, Text) {
    const Case cases[] = {
        {"{\\rtf1 Hello\\par World\\line a\\tab b\\\nc}", "Hello\r\nWorld\r\na\tb\r\nc"},
        // Destinations that hold no text, known or marked with \*, and
        // control words without a meaning.
        {"{\\rtf1{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red0;}{\\stylesheet{\\s1 Normal;}}{\\info{\\title T}}"
         "{\\*\\generator g;}{\\*\\unknown u{x}}{\\pict\\bin3 }}}}{\\header h}\\unknownword A}",
         "A"},
        {"{\\rtf1 a{\\v hidden}b\\v c\\v0 d}", "abd"},
        {"{\\rtf1 a\\~b\\-c\\_d\\emdash\\{\\}\\\\\\lquote\\rdblquote\\bullet}",
         "a\u00A0bc\u2011d\u2014{}\\\u2018\u201D\u2022"},
        // \uN and the characters its fallback stands for, by \ucN.
        {"{\\rtf1\\u233?x\\uc0\\u233 y{\\uc2\\u233\\'e9\\'e9z}}", "\u00E9x\u00E9y\u00E9z"},
        {"{\\rtf1\\uc3\\u233{a}b}", "\u00E9ab"},            // a group ends the fallback
        {"{\\rtf1\\uc2{\\uc0}\\u233 abc}", "\u00E9c"},       // \uc belongs to its group
        {"{\\rtf1\\u-10179?\\u-8704?\\u-10179?x\\u-8704?}", "\U0001F600\uFFFDx\uFFFD"},
        {"{\\rtf1\\u8364\\par x}", "\u20AC"
                                    "x"},                       // a control word is a fallback too
        // Code pages: the document's, a font's \fcharset, a font's \cpg,
        // double-byte pairs with an ASCII or a \'hh trail.
        {"{\\rtf1\\ansi\\ansicpg1251 \\'c0\xc0}", "\u0410\u0410"},
        {"{\\rtf1\\ansi\\ansicpg1252\\deff1{\\fonttbl{\\f0\\fcharset0 A;}{\\f1\\fcharset204 B;}"
         "{\\f2\\fcharset0\\cpg1250 C;}{\\f3\\fcharset2 Symbol;}{\\f4\\fcharset128 D;}}"
         "\\'c0\\f0\\'c0\\f2\\'c0\\f3\\'b7\\f4\\'82\\'a0\\plain\\'c0}",
         "\u0410\u00C0\u0154\u2022\u3042\u0410"},
        {"{\\rtf1\\ansi\\ansicpg932 \\'82\\'a0\\'83e\\'82\\par x}", "\u3042\u30C6\uFFFD\r\nx"},
        {"{\\rtf1\\ansicpg65001 \\'e2\\'82\\'ac\\'e2x\\'00\\'07\\'f0\\'9f\\'98\\'80}", "\u20AC\uFFFDx\U0001F600"},
        // Fields show their results; \upr shows its Unicode twin.
        {"{\\rtf1{\\field{\\*\\fldinst HYPERLINK \"http://x.org/\"}{\\fldrslt site}} "
         "{\\field{\\*\\fldinst PAGE}{\\fldrslt 3}}{\\upr{ansi}{\\*\\ud{uni}}}}",
         "site 3uni"},
        // List text, and tables as rows of tab-separated cells.
        {"{\\rtf1{\\pntext 1.\\tab}One\\par{\\listtext\\'b7\\tab}Two}", "1.\tOne\r\n\u00B7\tTwo"},
        {"{\\rtf1\\trowd\\cellx1\\cellx2\\cellx3\\pard\\intbl a\\par b\\cell\\cell c\\cell\\row\\pard after}",
         "a b\t\tc\r\nafter"},
    };
    for (const Case& c : cases) EXPECT_EQ(text(c.rtf), c.expected) << c.rtf;
}

TEST(NativeRtf, Html) {
    const Case cases[] = {
        {"{\\rtf1 a\\par\\par b\\line c\\tab d}", "<p>a</p>\r\n<p><br></p>\r\n<p>b<br>c\td</p>\r\n"},
        {"{\\rtf1 <script>&\"'\\'3c}", "<p>&lt;script&gt;&amp;&quot;&#39;&lt;</p>\r\n"},
        {"{\\rtf1{\\field{\\*\\fldinst{ HYPERLINK \"http://x.org/?a=1&b=2\" \\\\o \"tip\"}}"
         "{\\fldrslt{\\b site}}} x}",
         "<p><a href=\"http://x.org/?a=1&amp;b=2\"><b>site</b></a> x</p>\r\n"},
        {"{\\rtf1{\\field{\\*\\fldinst HYPERLINK \"javascript:alert(1)\"}{\\fldrslt site}}}", "<p>site</p>\r\n"},
        {"{\\rtf1 x\\par\\trowd\\cellx1\\cellx2\\pard\\intbl a\\line b\\cell{\\b c}\\cell\\row\\pard d\\par}",
         "<p>x</p>\r\n<table>\r\n<tr><td>a<br>b</td><td><b>c</b></td></tr>\r\n</table>\r\n<p>d</p>\r\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(htmlBody(c.rtf), c.expected) << c.rtf;
}

}  // namespace
