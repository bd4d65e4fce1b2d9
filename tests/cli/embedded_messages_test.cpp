// Embedded messages through the tool: listed as a tree, extracted into
// folders of their own (or as streams with --no-recurse), reached by nested
// indices, and reported like any damaged stream when they can't be read.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/cli/cli_runner.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

// extract writes each embedded message into a folder of its own; list, show
// and props reach into them by nested indices.
TEST(CliEmbedded, EmbeddedMessagesAreExtractedIntoFoldersAndReachedByNestedIndices) {
    // Outer (big.bin, Fwd_zd2 = Inner (b.txt, Deeper_zd2 = Deepest (c.bin))).
    // big.bin spans several of the tool's read and write buffers and is a
    // multiple neither of them nor of the module's block.
    Bytes big = randomBytes(3 * 1024 * 1024 + 4321, 12);
    Bytes data = randomBytes(70000, 7);
    Bytes deepest = noteMessage("Deepest", "third body", {{"c.bin", data, {}}});
    Bytes inner =
        noteMessage("Inner", "second body", {{"b.txt", bytesOf("BB"), {}}, embeddedMessage("Deeper", deepest)});
    Bytes outer = noteMessage("Outer", "first body", {{"big.bin", big, {}}, embeddedMessage("Fwd", inner)});
    TempDir dir;
    std::string file = writeFile(dir.path() / "outer.tnef", outer);
    ToolRun run = runTool({"extract", file, "-C", dir / "out", "--no-header", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(filesBelow(dir.path() / "out"),
              (std::vector<std::string>{"Fwd_zd2/Deeper_zd2/Deepest.mail.txt",
                                        "Fwd_zd2/Deeper_zd2/c.bin", "Fwd_zd2/Inner.mail.txt",
                                        "Fwd_zd2/b.txt", "Outer.mail.txt", "big.bin"}));
    EXPECT_EQ(readFile(dir / "out/big.bin"), big);

    Json fwd = run.json()["written"][2];
    EXPECT_EQ(fwd["nested"]["written"][1]["path"], dir / "out/Fwd_zd2/b.txt");
    EXPECT_EQ(fwd["nested"]["written"][2]["nested"]["written"][1]["bytes"], 70000);

    ToolRun raw = runTool({"extract", file, "-C", dir / "raw", "--no-recurse"});
    ASSERT_EQ(raw.exitCode, 0) << raw.err;
    EXPECT_EQ(filesBelow(dir.path() / "raw"),
              (std::vector<std::string>{"Fwd_zd2.tnef", "Outer.mail.txt", "big.bin"}));
    EXPECT_EQ(readFile(dir / "raw/Fwd_zd2.tnef"), inner);

    Json listed = runTool({"list", file, "--json"}).json()["subfiles"][2];
    EXPECT_EQ(listed["nested"]["summary"]["subject"], "Inner");
    EXPECT_EQ(listed["nested"]["subfiles"][2]["nested"]["subfiles"][1]["name"], "c.bin");

    ToolRun table = runTool({"list", file});
    EXPECT_EQ(table.exitCode, 0) << table.err;
    EXPECT_NE(table.out.find("\n2/2/1  attachment    70000"), std::string::npos) << table.out;

    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string out;  // the whole of stdout, when not empty
    } cases[] = {
        {{"show", file, "--index", "2", "--no-header"}, 0, "second body"},
        {{"show", file, "--index", "2/2", "--no-header"}, 0, "third body"},
        {{"props", file, "--index", "2/2/0", "--tag", "0x0037001E"}, 0, "0x0037001E: Deepest\n"},
        {{"show", file, "--index", "1"}, 1, ""},
        {{"props", file, "--index", "1/0"}, 1, ""},
        {{"props", file, "--index", "2/7"}, 1, ""},
        {{"props", file, "--index", "2/"}, 1, ""},
    };
    for (const Case& c : cases) {
        ToolRun run = runTool(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.args[3] << "\n" << run.err;
        if (!c.out.empty()) {
            EXPECT_EQ(run.out, c.out) << c.args[3];
        }
    }
    Json props = runTool({"props", file, "--index", "2/0", "--json"}).json();
    EXPECT_EQ(props["indexPath"], "2/0");
    EXPECT_EQ(props["properties"][5]["value"], "Inner");
}

TEST(CliEmbedded, AnEmbeddedMessageThatCannotBeReadIsReportedAndTheRestIsWritten) {
    Bytes deep = noteMessage("Leaf", "", {});
    std::vector<std::string> deepFiles;  // a message at every level; the 17th not opened
    std::string folder;
    for (int level = 0; level <= 16; ++level) {
        deep = noteMessage("Level", "", {embeddedMessage("Fwd", deep)});
        deepFiles.push_back(folder + "Level.mail.txt");
        folder += "Fwd_zd1/";
    }
    deepFiles.push_back(folder.substr(0, folder.size() - 1) + ".tnef");
    std::sort(deepFiles.begin(), deepFiles.end());
    struct Case {
        const char* what;
        Bytes stream;
        std::string warning;
        Json nested;  // list --json: the "nested" of the embedded message, less its listing
        std::vector<std::string> files;
    } cases[] = {
        {"damaged", noteMessage("Outer", "", {embeddedMessage("Bad", damagedStream()), {"z.txt", bytesOf("Z"), {}}}),
         "embedded message 1: damaged stream: stream failure",
         {{"status", 4}, {"error", "stream failure: unreadable or malformed data (4)"}},
         {"Bad_zd1/subfile-0.txt", "Outer.mail.txt", "z.txt"}},
        {"no stream", noteMessage("Outer", "", {embeddedMessage("Junk", bytesOf("no stream")), {"z.txt", bytesOf("Z"), {}}}),
         "embedded message 1: not a TNEF stream", {{"status", 4}, {"error", "not a TNEF stream"}},
         {"Junk_zd1", "Outer.mail.txt", "z.txt"}},
        {"too deep", deep, "embedded message 1/1/1/1/1/1/1/1/1/1/1/1/1/1/1/1/1: nested deeper than 16 messages",
         {{"status", nullptr}, {"error", "nested deeper than 16 messages"}}, deepFiles},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempDir dir;
        std::string file = writeFile(dir.path() / "outer.tnef", c.stream);
        ToolRun run = runTool({"extract", file, "-C", dir / "out"});
        EXPECT_EQ(run.exitCode, 3);
        EXPECT_NE(run.err.find(c.warning), std::string::npos) << run.err;
        EXPECT_EQ(filesBelow(dir.path() / "out"), c.files);

        ToolRun list = runTool({"list", file, "--json"});
        EXPECT_EQ(list.exitCode, 3);
        Json nested = list.json()["subfiles"][1]["nested"];
        while (nested["error"] == nullptr) nested = nested["subfiles"][1]["nested"];  // go deeper
        EXPECT_EQ(nested["status"], c.nested["status"]);
        EXPECT_EQ(nested["error"], c.nested["error"]);
    }
}

}  // namespace
}  // namespace tneftest
