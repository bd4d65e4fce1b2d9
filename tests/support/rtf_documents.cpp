#include "tests/support/lzfu_compressor.h"

#include <random>

namespace tneftest {

namespace {

// Words of a sentence, picked by a small generator so every run makes the
// same document.
class Words {
public:
    std::string sentence(size_t count) {
        static const char* const kWords[] = {"the", "meeting", "moved", "to", "Thursday", "caf\\'e9",
                                             "budget", "report", "please", "review", "attached", "and",
                                             "send", "comments", "before", "noon", "we", "agreed"};
        std::string out;
        for (size_t i = 0; i < count; ++i) {
            state_ = state_ * 1103515245u + 12345u;
            out += kWords[(state_ >> 16) % std::size(kWords)];
            out += i + 1 < count ? " " : ".";
        }
        return out;
    }

private:
    uint32_t state_ = 7;
};

std::string htmlEncapsulated(size_t size) {
    std::string out =
        "{\\rtf1\\ansi\\ansicpg1252\\fromhtml1 \\fbidis \\deff0{\\fonttbl\r\n{\\f0\\fswiss Arial;}\r\n"
        "{\\f1\\fmodern Courier New;}\r\n{\\f2\\fnil\\fcharset2 Symbol;}}\r\n"
        "{\\colortbl\\red0\\green0\\blue0;\\red0\\green0\\blue255;}\r\n\\uc1\\pard\\plain\\deftab360 \\f0\\fs24 \r\n"
        "{\\*\\htmltag19 <html>}\r\n{\\*\\htmltag34 <head>}\r\n"
        "{\\*\\htmltag241 <meta http-equiv=\"Content-Type\" content=\"text/html; charset=windows-1252\">}\r\n"
        "{\\*\\htmltag241 <style>\\par p.MsoNormal \\{margin:0cm;font-size:11.0pt\\}\\par </style>}\r\n"
        "{\\*\\htmltag41 </head>}\r\n{\\*\\htmltag50 <body lang=EN-US>}\r\n";
    Words words;
    for (size_t n = 0; out.size() < size; ++n) {
        out += "{\\*\\htmltag64 <p class=MsoNormal>}\\htmlrtf {\\htmlrtf0 {\\*\\htmltag148 <span "
               "style='font-size:11.0pt'>}\\htmlrtf {\\htmlrtf0 ";
        out += words.sentence(12) + " It\\rquote s \\u8364?" + std::to_string(n);
        if (n % 4 == 0) {
            out += " {\\*\\htmltag84 <a href=\"http://example.com/" + std::to_string(n) +
                   "\">}\\htmlrtf {\\field{\\*\\fldinst{HYPERLINK \"http://example.com/" + std::to_string(n) +
                   "\"}}{\\fldrslt\\cf1\\ul \\htmlrtf0 the link\\htmlrtf }\\htmlrtf0 \\htmlrtf }\\htmlrtf0 "
                   "{\\*\\htmltag92 </a>}";
        }
        out += "{\\*\\htmltag84 &nbsp;}\\htmlrtf \\'a0\\htmlrtf0 \\htmlrtf }\\htmlrtf0 {\\*\\htmltag156 "
               "</span>}\\htmlrtf }\\htmlrtf0 {\\*\\htmltag72 </p>}\\htmlrtf \\par\r\n\\htmlrtf0 \r\n";
    }
    return out + "{\\*\\htmltag58 </body>}\r\n{\\*\\htmltag27 </html>}}";
}

std::string textHeavy(size_t size) {
    std::string out =
        "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1033{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}}\r\n"
        "{\\*\\generator Riched20 5.40.11.2210;}\\viewkind4\\uc1\\pard\\f0\\fs20 ";
    Words words;
    while (out.size() < size) out += words.sentence(14) + " " + words.sentence(9) + "\\par\r\n";
    return out + "}";
}

std::string formatHeavy(size_t size) {
    std::string out =
        "{\\rtf1\\adeflang1025\\ansi\\ansicpg1252\\uc1\\adeff0\\deff0\\stshfdbch0\\stshfloch31506"
        "{\\fonttbl{\\f0\\fbidi \\froman\\fcharset0\\fprq2{\\*\\panose 02020603050405020304}Times New Roman;}"
        "{\\f1\\fbidi \\fswiss\\fcharset204\\fprq2 Arial CYR;}}{\\colortbl;\\red0\\green0\\blue0;}"
        "{\\stylesheet{\\ql \\li0\\ri0\\widctlpar\\wrapdefault\\aspalpha\\aspnum\\faauto\\adjustright\\rin0"
        "\\lin0\\itap0 \\rtlch\\fcs1 \\af0\\afs24\\alang1025 \\ltrch\\fcs0 \\fs24\\lang1033 \\snext0 Normal;}}"
        "{\\*\\rsidtbl \\rsid1234567}{\\info{\\author A}}\\paperw12240\\paperh15840\\margl1800\r\n";
    Words words;
    for (size_t n = 0; out.size() < size; ++n) {
        out += "\\pard\\plain \\ltrpar\\ql \\li0\\ri0\\widctlpar\\wrapdefault\\aspalpha\\aspnum\\faauto"
               "\\adjustright\\rin0\\lin0\\itap0 \\rtlch\\fcs1 \\af0\\afs24\\alang1025 \\ltrch\\fcs0 "
               "\\fs24\\lang1033\\langfe1033\\cgrid\\langnp1033\\langfenp1033 {\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 "
               "\\b\\insrsid1234567 ";
        out += words.sentence(3) + "}{\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\i\\insrsid1234567 " + words.sentence(4) +
               "}{\\f1 \\'c0\\'e1\\'e2}{\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\insrsid1234567 \\par }\r\n";
        if (n % 3 == 0) {
            out += "\\trowd \\irow0\\irowband0\\ltrrow\\ts11\\trgaph108\\trleft-108\\trbrdrt\\brdrs\\brdrw10 "
                   "\\trbrdrl\\brdrs\\brdrw10 \\trftsWidth1\\trftsWidthB3\\tblind0\\tblindtype3 \\clvertalt"
                   "\\clbrdrt\\brdrs\\brdrw10 \\cltxlrtb\\clftsWidth3\\clwWidth4428\\clshdrawnil \\cellx4320"
                   "\\clvertalt\\clbrdrt\\brdrs\\brdrw10 \\cltxlrtb\\clftsWidth3\\clwWidth4428\\clshdrawnil "
                   "\\cellx8748\\pard\\plain \\ltrpar\\ql \\li0\\ri0\\widctlpar\\intbl\\wrapdefault\\aspalpha"
                   "\\aspnum\\faauto\\adjustright\\rin0\\lin0 \\rtlch\\fcs1 \\af0\\afs24 \\ltrch\\fcs0 \\fs24"
                   "\\lang1033 {\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\insrsid1234567 " +
                   words.sentence(2) + "\\cell " + words.sentence(3) +
                   "\\cell }\\pard\\plain \\ltrpar\\ql \\li0\\ri0\\widctlpar\\intbl\\wrapdefault\\aspalpha"
                   "\\aspnum\\faauto\\adjustright\\rin0\\lin0 {\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\insrsid1234567 "
                   "\\trowd \\irow0\\irowband0\\ltrrow\\ts11\\trgaph108\\trleft-108\\cellx4320\\cellx8748\\row }\r\n";
        }
    }
    return out + "}";
}

}  // namespace

std::string rtfDocument(RtfKind kind, size_t size) {
    switch (kind) {
        case RtfKind::kHtmlEncapsulated: return htmlEncapsulated(size);
        case RtfKind::kTextHeavy: return textHeavy(size);
        case RtfKind::kFormatHeavy: return formatHeavy(size);
    }
    return {};
}

Bytes sampleRtfText(uint32_t seed, size_t size) {
    static const char* const pieces[] = {"\\par ",  "{\\b ",          "}",      "\\pard\\plain\\f0\\fs20 ",
                                         "hello ", "world ",         "\\'e9",  "\r\n",
                                         "\\tab ", "Times New Roman;"};
    constexpr uint32_t kPieces = sizeof pieces / sizeof pieces[0];
    std::mt19937 random(seed);
    Bytes out;
    while (out.size() < size) {
        uint32_t pick = random() % (kPieces + 2);
        if (pick == kPieces) {
            out.insert(out.end(), random() % 200 + 1, static_cast<uint8_t>('-' + random() % 40));
        } else if (pick == kPieces + 1) {
            for (int i = random() % 9; i >= 0; --i) out.push_back(static_cast<uint8_t>('a' + random() % 26));
        } else {
            for (const char* p = pieces[pick]; *p != 0; ++p) out.push_back(static_cast<uint8_t>(*p));
        }
    }
    out.resize(size);
    return out;
}

}  // namespace tneftest
