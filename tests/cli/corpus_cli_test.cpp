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

Json loadExpected(const std::string& dir) {
    std::ifstream in(dir + "/expected.json");
    return Json::parse(in, nullptr, false);
}

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
        expected_ = loadExpected(dir_);
        ASSERT_FALSE(expected_.is_discarded()) << "expected.json missing or unreadable in " << dir_;
    }
    std::string dir_;
    Json expected_;
};

TEST_F(CorpusCli, ListShowsEveryNameTypeAndSize) {
    for (const auto& [file, want] : expected_.items()) {
        SCOPED_TRACE(file);
        ToolRun run = runTool({"list", dir_ + "/" + file, "--json"});
        EXPECT_EQ(run.exitCode, want["open_status"] == 0 ? 0 : 3) << run.err;
        Json got = run.json();
        EXPECT_EQ(got["status"], want["open_status"]);
        ASSERT_EQ(got["subfiles"].size(), want["subfiles"].size());
        for (const auto& sub : want["subfiles"]) {
            const auto& listed = got["subfiles"][sub["index"].get<size_t>()];
            EXPECT_EQ(listed["index"], sub["index"]);
            EXPECT_EQ(listed["name"], sub["name"]) << sub["index"];
            EXPECT_EQ(listed["type"], sub["type"]) << sub["index"];
            EXPECT_EQ(listed["size"], sub["size"]) << sub["index"];
        }
    }
}

TEST_F(CorpusCli, ExtractWritesEverySubfileWithTheExpectedBytes) {
    for (const auto& [file, want] : expected_.items()) {
        SCOPED_TRACE(file);
        TempDir out;
        ToolRun run = runTool({"extract", dir_ + "/" + file, "-C", out.path().string(), "--json"});
        EXPECT_EQ(run.exitCode, want["open_status"] == 0 ? 0 : 3) << run.err;
        Json report = run.json();
        size_t files = 0;
        for (const auto& sub : want["subfiles"]) {
            int index = sub["index"].get<int>();
            const Json* entry = writtenEntry(report, index);
            if (sub["type"] == "message" && sub["name"].is_null()) {  // damaged stream
                if (entry != nullptr && entry->contains("path")) ++files;
                continue;
            }
            ASSERT_NE(entry, nullptr) << "subfile " << index << " not reported";
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
            EXPECT_EQ(fs::file_size(path), sub["extracted_size"].get<uintmax_t>());
            EXPECT_EQ(sha256Of(path), sub["extracted_sha256"]);
        }
        // Nothing else in the folder: no temporary file left behind.
        EXPECT_EQ(filesBelow(out.path()).size(), files);
    }
}

TEST_F(CorpusCli, StandardInputReadsLikeTheFile) {
    std::string file = dir_ + "/attachments.tnef";
    Json fromFile = runTool({"list", file, "--json"}).json();
    ToolRun piped = runTool({"list", "-", "--json"}, file);
    EXPECT_EQ(piped.exitCode, 0) << piped.err;
    Json fromStdin = piped.json();
    EXPECT_EQ(fromStdin["file"], "-");
    EXPECT_EQ(fromStdin["subfiles"], fromFile["subfiles"]);

    TempDir out;
    ToolRun extracted = runTool({"extract", "-", "-C", out.path().string(), "--body", "none"}, file);
    EXPECT_EQ(extracted.exitCode, 0) << extracted.err;
    EXPECT_EQ(sha256Of(out / "zappa_av1.jpg"),
              expected_["attachments.tnef"]["subfiles"][1]["extracted_sha256"]);
}

}  // namespace
}  // namespace tneftest
