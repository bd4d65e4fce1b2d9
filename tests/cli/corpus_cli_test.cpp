// Every sample of the corpus listed and extracted through the tool, compared
// with expected.json: names, types, sizes and the SHA-256 of what is written.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/cli/cli_runner.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

namespace fs = std::filesystem;

const Json* writtenEntry(const Json& report, int index) {
    for (const auto& entry : report["written"]) {
        if (entry["index"] == index) return &entry;
    }
    return nullptr;
}

class CorpusCli : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = corpusDir();
        if (dir_.empty()) GTEST_SKIP() << "no sample folder (set TNEF_CORPUS or provide ../shared/corpus)";
        std::ifstream in(dir_ + "/expected.json");
        expected_ = Json::parse(in, nullptr, false);
        ASSERT_FALSE(expected_.is_discarded()) << "expected.json missing or unreadable in " << dir_;
    }
    std::string dir_;
    Json expected_;
};

TEST_F(CorpusCli, ListAndExtractShowEverySubfileAsExpected) {
    for (const auto& [file, want] : expected_.items()) {
        SCOPED_TRACE(file);
        int exitCode = want["open_status"] == 0 ? 0 : 3;
        ToolRun list = runTool({"list", dir_ + "/" + file, "--json"});
        EXPECT_EQ(list.exitCode, exitCode) << list.err;
        Json listed = list.json();
        EXPECT_EQ(listed["status"], want["open_status"]);
        ASSERT_EQ(listed["subfiles"].size(), want["subfiles"].size());

        TempDir out;
        ToolRun run = runTool({"extract", dir_ + "/" + file, "-C", out.path().string(), "--json"});
        EXPECT_EQ(run.exitCode, exitCode) << run.err;
        Json report = run.json();
        size_t files = 0;
        for (const auto& sub : want["subfiles"]) {
            int index = sub["index"].get<int>();
            SCOPED_TRACE(index);
            const auto& shown = listed["subfiles"][index];
            EXPECT_EQ(shown["index"], sub["index"]);
            EXPECT_EQ(shown["name"], sub["name"]);
            EXPECT_EQ(shown["type"], sub["type"]);
            EXPECT_EQ(shown["size"], sub["size"]);
            const Json* entry = writtenEntry(report, index);
            if (sub["type"] == "message" && sub["name"].is_null()) {  // damaged stream
                if (entry != nullptr && entry->contains("path")) ++files;
                continue;
            }
            ASSERT_NE(entry, nullptr) << "not reported";
            ASSERT_TRUE(entry->contains("path")) << entry->dump();
            EXPECT_EQ((*entry)["status"], 0);
            std::string path = (*entry)["path"];
            EXPECT_EQ(fs::path(path).parent_path(), out.path());
            ++files;
            if (sub["type"] == "message") {
                std::string form = (*entry)["form"];
                std::string extension = form == "text" ? ".txt" : "." + form;
                EXPECT_EQ(fs::path(path).filename().string(), sub["name"].get<std::string>() + extension);
                continue;
            }
            std::string name = sub.value("ole_subfile_name", sub["name"].get<std::string>());
            EXPECT_EQ(fs::path(path).filename().string(), name);
            EXPECT_EQ((*entry)["bytes"], sub["extracted_size"]);
            EXPECT_EQ(sha256Of(path), sub["extracted_sha256"]);
        }
        // Nothing else in the folder: no temporary file left behind.
        EXPECT_EQ(filesBelow(out.path()).size(), files);
    }
}

// The bodies the samples store only as RTF come out readable in both forms:
// encapsulated HTML as the original HTML, encapsulated text as text, native
// RTF as its words (a stored text body goes before the RTF for text); no RTF
// is left in any of them.
TEST_F(CorpusCli, EveryBodyIsReadableInBothForms) {
    struct Case {
        const char* file;
        const char* htmlSource;
        const char* textSource;
        std::vector<std::string> html, text;  // in this order
    } cases[] = {
        {"multi-value-attribute.tnef", "rtf-html", "rtf-html",
         {"<b>Attachments: </b>208225__5_seconds__Voice_Mail.mp3<br>",
          "You received a voice mail from Curie Conf Room at <a style=\"color: #3399ff; \" "
          "href=\"tel:208225\">208225</a>.</div><br><table border=\"0\"",
          "</body></html>"},
         {"Attachments: 208225__5_seconds__Voice_Mail.mp3\r\n\r\n"
          "You received a voice mail from Curie Conf Room at 208225.\r\n"}},
        {"long-filename.tnef", "rtf-text", "rtf-text",
         {"<p>I&#39;ve attached a temp. license for QARun 4.7.  Do you", "<p>Heather</p>"},
         {"Sent: Wed Nov 17 20:28:44 1999\r\n",
          "\r\n\r\nHeather\r\n",
          "Compuware Corporation                                      msimpson@numega.com\r\n"}},
        {"rtf.tnef", "rtf", "rtf", {"<p>aafg<b>ag&#39;alga&#39;kgk</b></p>", "<p><b>\\hge</b></p>"},
         {"aafgag'alga'kgk\r\n", "\\hge\r\nrgtad"}},
        {"triples.tnef", "rtf", "text", {"<p>Sample description</p>"}, {"Sample description\r\n"}},
    };
    for (const Case& c : cases) {
        for (const char* form : {"html", "text"}) {
            SCOPED_TRACE(std::string(c.file) + " as " + form);
            TempDir out;
            ToolRun run = runTool({"extract", dir_ + "/" + c.file, "-C", out.path().string(), "--body", form,
                                   "--json", "--only", "0"});
            EXPECT_EQ(run.exitCode, 0) << run.err;
            Json message = run.json()["written"][0];
            bool html = form == std::string("html");
            EXPECT_EQ(message["source"], html ? c.htmlSource : c.textSource);
            EXPECT_EQ(filesBelow(out.path()).size(), 1u) << "--only 0 writes the message alone";
            std::string body = readText(message["path"]);
            EXPECT_EQ(body.find("\\rtf1"), std::string::npos) << body;
            EXPECT_EQ(body.find("htmltag"), std::string::npos) << body;
            EXPECT_TRUE(inOrder(body, html ? c.html : c.text)) << body;
        }
    }
}

// Standard input that is no mail is spooled and read as the file would be.
TEST_F(CorpusCli, StandardInputReadsLikeTheFile) {
    std::string file = dir_ + "/attachments.tnef";
    ToolRun piped = runTool({"list", "-", "--json"}, file);
    EXPECT_EQ(piped.exitCode, 0) << piped.err;
    EXPECT_EQ(piped.json()["subfiles"], runTool({"list", file, "--json"}).json()["subfiles"]);
}

}  // namespace
}  // namespace tneftest
