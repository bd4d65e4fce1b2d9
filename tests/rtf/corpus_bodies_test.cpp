// The RTF bodies of the real samples, taken from the module as it stores
// them and made readable: encapsulated HTML gives the original HTML,
// encapsulated text its text, native RTF its words in order; no RTF is
// left in any of them.
#include <gtest/gtest.h>

#include "tests/rtf/rtf_support.h"
#include "tests/support/reader_fixture.h"

namespace {

using tnefrtf::Encapsulation;
using tnefrtf::OutputForm;

// The message's RTF body, as the module gives it with the stored body
// preferred and no summary header.
std::string storedRtf(const std::string& file) {
    tneftest::OpenedStream stream(tneftest::readFile(file));
    tneftest::Extraction body =
        tneftest::extractSubfile(stream, 0, kTnefExtractOmitHeader | kTnefExtractPreferStoredBody);
    EXPECT_EQ(body.status, kTnefOk) << file;
    EXPECT_EQ(stream.close(), "") << file;
    return std::string(body.bytes.begin(), body.bytes.end());
}

TEST(CorpusBodies, ReadableHtmlAndText) {
    std::string dir = tneftest::corpusDir();
    if (dir.empty()) GTEST_SKIP() << "no sample folder (set TNEF_CORPUS or provide ../shared/corpus)";
    struct Case {
        const char* file;
        Encapsulation encapsulation;
        std::vector<std::string> html;  // in this order in the HTML
        std::vector<std::string> text;  // in this order in the text
    };
    const Case cases[] = {
        {"multi-value-attribute.tnef", Encapsulation::kHtml,
         {"<html>", "<head>\r\n<style type=\"text/css\"> a:link { color: #3399ff; }",
          "<div id=\"UM-call-info\" lang=\"en\">",
          "You received a voice mail from Curie Conf Room at <a style=\"color: #3399ff; \" "
          "href=\"tel:208225\">208225</a>.</div><br><table border=\"0\"",
          "</body></html>"},
         {"You received a voice mail from Curie Conf Room at 208225.\r\n"}},
        {"long-filename.tnef", Encapsulation::kText,
         {"<p>I&#39;ve attached a temp. license for QARun 4.7.  Do you", "<p>Heather</p>"},
         {"I've attached a temp. license for QARun 4.7.  Do you need something more permanent?",
          "\r\n\r\nHeather\r\n", "From: Mark Simpson [mailto:msimpson@numega.com]\r\n",
          "Compuware Corporation                                      msimpson@numega.com\r\n"}},
        {"missing-filenames.tnef", Encapsulation::kText,
         {"<p>Hi Stephen,</p>", "<p>cheers, Liedeke</p>"},
         {"Hi Stephen,\r\n\r\nSue has encountered a Date problem", "cheers, Liedeke\r\n", "EOM \r\n",
          "please notify postmaster@bhp.com.au.\r\n"}},
        {"rtf.tnef", Encapsulation::kNone,
         {"<p>aafg<b>ag&#39;alga&#39;kgk</b></p>", "<p><b>\\hge</b></p>", "<p>-- Greg</p>"},
         {"aafgag'alga'kgk\r\n", "agka;kgag", "\\hge\r\nrgtad", "Greg Allen\r\n", "978-318-6939 (Fax)"}},
        {"triples.tnef", Encapsulation::kNone, {"<p>Sample description</p>"}, {"Sample description\r\n"}},
        {"attachments.tnef", Encapsulation::kNone,
         {"<p>Casdasdfasdfasd</p>"}, {"Casdasdfasdfasd\r\nCasdasdfasdfasd\r\n\r\n\r\nCasdasdfasdfasd"}},
    };
    for (const Case& c : cases) {
        std::string rtf = storedRtf(dir + "/" + c.file);
        ASSERT_EQ(rtf.rfind("{\\rtf1", 0), 0u) << c.file;
        for (OutputForm form : {OutputForm::kHtml, OutputForm::kText}) {
            rtftest::Converted converted = rtftest::convert(rtf, form);
            const std::string& out = converted.output;
            EXPECT_EQ(converted.result.status, tnefrtf::ConversionStatus::kComplete) << c.file;
            EXPECT_EQ(converted.result.encapsulation, c.encapsulation) << c.file;
            EXPECT_EQ(out.find("\\rtf1"), std::string::npos) << c.file;
            EXPECT_EQ(out.find("htmltag"), std::string::npos) << c.file;
            EXPECT_TRUE(tneftest::inOrder(out, form == OutputForm::kHtml ? c.html : c.text)) << c.file << "\n" << out;
        }
    }
}

}  // namespace
