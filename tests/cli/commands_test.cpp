// Exit codes, the JSON shapes of every command, text shown as UTF-8, the
// message's rendering and the batch report.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/cli_runner.h"
#include "tests/support/lzfu_compressor.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t kSentTime = 0x01C9CCA1F345AB00ull;  // 2009-05-04T10:20:30Z

Bytes sampleStream() {
    MessageLayout plan;
    plan.body = "Body text";
    plan.props = {Prop::string8(kTagSubject8, "Hello"), Prop::time(kTagClientSubmitTime, kSentTime),
                  Prop::int32(kTagImportance, 2),
                  Prop::string8(kTagSentRepresentingName8, "Ann"),
                  Prop::string8(kTagSentRepresentingEmail8, "ann@example.com")};
    plan.attachments.push_back({"report.pdf", bytesOf("%PDF-1.4 small"), {}});
    return buildMessage(plan);
}

TEST(CliExitCodes, EachKindOfInputEndsWithItsCode) {
    TempDir dir;
    std::string text = writeFile(dir.path() / "note.txt", bytesOf("just some text, no TNEF"));
    std::string good = writeFile(dir.path() / "good.tnef", sampleStream());
    std::string bad = writeFile(dir.path() / "bad.tnef", damagedStream());
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string err;  // part of stderr, when not empty
    } cases[] = {
        {{"list", text}, 2},
        {{"list", dir / "missing.tnef"}, 2},
        {{"list", dir.path().string()}, 2},
        {{"list", bad}, 3},
        {{"list"}, 1},
        {{"extract", good, "--charset", "no-such-charset"}, 1},
        {{"extract", good, "--only", "2", "-C", dir / "x"}, 1, "no subfile 2"},
        {{"props", good, "--tag", "0xZZ"}, 1},
        {{"list", good, "--help"}, 0},
    };
    for (const Case& c : cases) {
        ToolRun run = runTool(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.args[0] << " " << (c.args.size() > 1 ? c.args[1] : "")
                                            << "\n" << run.err;
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
    }
    // Both streams into one pipe: the report's last line ends before the warning.
    ToolRun merged = runTool({"props", bad}, "", true);
    EXPECT_NE(merged.out.find("Subject:  -\nPriority: -\ntnef-reader: "), std::string::npos) << merged.out;
}

// The JSON of list (with the root, the message and an attachment) and of
// props, byte for byte; props names the summary's properties by default.
TEST(CliJson, ListAndPropsHaveTheirShapes) {
    TempDir dir;
    std::string file = writeFile(dir.path() / "good.tnef", sampleStream());
    std::string head = R"({"file":")" + file + R"(","status":0,"error":null,)";
    EXPECT_EQ(runTool({"list", file, "--json", "--root"}).out,
              head + R"("summary":{"from":"\"Ann\" <ann@example.com>","sent":"2009-05-04T10:20:30Z",)"
                     R"("to":null,"cc":null,"bcc":null,"subject":"Hello","importance":"High"},"subfiles":[)"
                     R"({"index":0,"name":"root/","type":"root","size":0,"time":null,"parentIndex":-1,)"
                     R"("children":[1]},{"index":1,"name":"root/Hello.mail","type":"message","size":9,)"
                     R"("time":"2009-05-04T10:20:30Z","charset":0,"parentIndex":0,"children":[2]},)"
                     R"({"index":2,"name":"root/report.pdf","type":"attachment","size":14,"time":null,)"
                     R"("parentIndex":1}]})" "\n");
    ToolRun tagged = runTool({"props", file, "--tag", "0x0037001E", "--tag", "0x0037001F", "--json"});
    EXPECT_EQ(tagged.exitCode, 0) << tagged.err;
    EXPECT_EQ(tagged.out, head + R"("index":0,"queryStatus":0,"properties":[{"name":null,"tag":"0x0037001E",)"
                                 R"("found":true,"type":"text8","value":"Hello"},{"name":null,)"
                                 R"("tag":"0x0037001F","found":false,"type":"none","value":null}]})" "\n");
    EXPECT_EQ(runTool({"props", file, "--json"}).json()["properties"][6]["value"], 2);  // the importance
}

// 8-bit strings in the message's code page, bytes that already are UTF-8 and
// 16-bit strings. (The corpus checks show and write a code page 1252 name.)
TEST(CliJson, SubjectsAndNamesComeOutAsUtf8) {
    const std::string privet1251 = "\xCF\xF0\xE8\xE2\xE5\xF2";
    struct Case {
        int32_t codePage;
        Prop subject;
        std::string attachment;
        std::string subjectShown, attachmentShown;
    } cases[] = {
        {1251, Prop::string8(kTagSubject8, privet1251), privet1251 + ".txt", "Привет", "Привет.txt"},
        {1251, Prop::string8(kTagSubject8, "Grüße"), "naïve.txt", "Grüße", "naïve.txt"},
        {1252, Prop::unicode(kTagSubject16, "Grüße ☃"), "plain.txt", "Grüße ☃", "plain.txt"},
    };
    TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.subjectShown);
        MessageLayout plan{.props = {c.subject, Prop::int32(kTagMessageCodepage, c.codePage)}};
        plan.attachments.push_back({.data = bytesOf("data"),
                                    .props = {Prop::string8(kTagAttachLongFilename8, c.attachment)}});
        ToolRun list = runTool({"list", writeFile(dir.path() / "t.tnef", buildMessage(plan)), "--json"});
        EXPECT_EQ(list.exitCode, 0) << list.err;
        EXPECT_EQ(list.json()["summary"]["subject"], c.subjectShown);
        EXPECT_EQ(list.json()["subfiles"][1]["name"], c.attachmentShown);
        fs::path out = dir.path() / c.attachmentShown;
        ToolRun extracted = runTool({"extract", dir.path() / "t.tnef", "-C", out.string(), "--body", "none"});
        EXPECT_EQ(extracted.exitCode, 0) << extracted.err;
        EXPECT_TRUE(fs::exists(out / c.attachmentShown));
    }
}

// show --format and extract --body write the same bytes, extract under the
// extension of the form written; --raw and rtf give the module's rendering.
TEST(CliBodies, EachFormIsShownAndWrittenAlike) {
    TempDir dir;
    MessageLayout plan;
    plan.body = "Body text";
    plan.props = {Prop::string8(kTagSubject8, "R\xE9sum\xE9"), Prop::int32(kTagMessageCodepage, 1252),
                  Prop::binary(kTagRtfCompressed, compressRtf(bytesOf("{\\rtf1\\ansi R\\'e9sum\\'e9 <b>\\par}")))};
    std::string both = writeFile(dir.path() / "both.tnef", buildMessage(plan));
    plan.body.reset();
    plan.props.back() = Prop::binary(kTagRtfCompressed, compressRtf(bytesOf("{\\rtf1\\ansi cut short")));
    std::string damaged = writeFile(dir.path() / "damaged.tnef", buildMessage(plan));
    struct Case {
        std::string file;
        std::vector<std::string> options;
        const char* form;
        const char* source;  // null: the module's rendering
        std::vector<std::string> shown;  // in this order
        int exitCode;
    } cases[] = {
        {both, {"auto"}, "text", "text", {"Subject: Résumé\r\n", "Body text"}, 0},
        {both, {"text", "--charset", "iso-8859-1"}, "text", "text", {"Subject: R\xE9sum\xE9\r\n"}, 0},
        {both, {"html"}, "html", "rtf", {"<b>Subject: </b>Résumé<br>", "<p>Résumé &lt;b&gt;</p>"}, 0},
        {both, {"rtf"}, "rtf", nullptr, {"{\\rtf1", "Subject: \\b0 R\xE9sum\xE9\\par"}, 0},
        {both, {"html", "--raw"}, "rtf", nullptr, {"{\\rtf1"}, 0},
        {both, {"auto", "--raw", "--charset", "utf-8"}, "text", nullptr, {"Subject: Résumé", "Body text"}, 0},
        {damaged, {"text", "--no-header"}, "text", "rtf", {"cut short"}, 3},
    };
    for (const Case& c : cases) {
        std::string what = c.file + " " + c.options[0] + (c.options.size() > 1 ? " " + c.options[1] : "");
        SCOPED_TRACE(what);
        std::vector<std::string> show = {"show", c.file, "--format"};
        std::vector<std::string> extract = {"extract", c.file, "-C", dir / "out", "--overwrite",
                                            "--json", "--body"};
        show.insert(show.end(), c.options.begin(), c.options.end());
        extract.insert(extract.end(), c.options.begin(), c.options.end());
        ToolRun shown = runTool(show);
        EXPECT_EQ(shown.exitCode, c.exitCode) << shown.err;
        EXPECT_TRUE(inOrder(shown.out, c.shown)) << shown.out;
        EXPECT_EQ(shown.err.find("RTF body is damaged") != std::string::npos, c.exitCode != 0) << shown.err;
        ToolRun written = runTool(extract);
        EXPECT_EQ(written.exitCode, c.exitCode) << written.err;
        Json message = written.json()["written"][0];
        EXPECT_EQ(message["form"], c.form);
        EXPECT_EQ(message.value("source", ""), c.source == nullptr ? "" : c.source);
        EXPECT_EQ(message.contains("warning"), c.exitCode != 0);
        std::string path = message["path"];
        EXPECT_EQ(fs::path(path).extension(), std::string(c.form) == "text" ? ".txt" : "." + std::string(c.form));
        EXPECT_EQ(readText(path), shown.out);
        fs::remove(path);
    }
}

TEST(CliBatch, ProcessesFilesAndFoldersAndReportsEachFile) {
    TempDir dir;
    fs::create_directories(dir.path() / "in/sub");
    writeFile(dir.path() / "in/a.tnef", sampleStream());
    writeFile(dir.path() / "in/sub/a.tnef", sampleStream());
    writeFile(dir.path() / "in/sub/junk.bin", bytesOf("not TNEF"));
    // A file name that is not UTF-8: an overlong form, a surrogate, past U+10FFFF, lead byte F5.
    writeFile(dir.path() / "in/sub/o\xF0\x8F\xBF\x80 s\xED\xA0\x80 m\xF4\x90\x80\x80 f\xF5\x80\x80\x80.tnef",
              sampleStream());
    ToolRun run = runTool({"batch", dir / "in", "-C", dir / "out", "--jobs", "2", "--json"});
    EXPECT_EQ(run.exitCode, 3) << run.err;
    EXPECT_EQ(run.err, "");  // no progress bar when stderr is not a terminal
    Json report = run.json();
    ASSERT_EQ(report["files"].size(), 4u);
    EXPECT_EQ(report["counts"], (Json{{"files", 4}, {"ok", 3}, {"partial", 0}, {"failed", 1}}));
    EXPECT_EQ(report["files"][0]["file"], dir / "in/a.tnef");
    EXPECT_EQ(report["files"][0]["folder"], dir / "out/a.tnef");
    EXPECT_EQ(report["files"][1]["folder"], dir / "out/a (1).tnef");
    EXPECT_EQ(report["files"][2]["outcome"], "failed");
    EXPECT_EQ(report["files"][2]["error"], "not a TNEF stream");
    EXPECT_TRUE(fs::exists(dir.path() / "out/a (1).tnef/report.pdf"));
    EXPECT_TRUE(fs::exists(dir.path() / "out/o____ s___ m____ f____.tnef/report.pdf"));

    ToolRun good = runTool({"batch", dir / "in/a.tnef", "-C", dir / "out2"});
    EXPECT_EQ(good.exitCode, 0) << good.err;
    EXPECT_NE(good.out.find("1 files: 1 ok, 0 partial, 0 failed\n"), std::string::npos) << good.out;
}

}  // namespace
}  // namespace tneftest
