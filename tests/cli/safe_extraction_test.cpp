// Names from a stream are never trusted as paths: every file lands inside
// the target folder under a safe, unique name, and nothing is overwritten
// without --overwrite.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/cli/cli_runner.h"

namespace tneftest {
namespace {

namespace fs = std::filesystem;

constexpr uint32_t kAttachByReference = 2;

struct Hostile {
    std::string stored;
    std::string written;
};

const std::vector<Hostile>& hostileNames() {
    static const std::vector<Hostile> names = {
        {"../../escape", "___.._escape"},
        {"/etc/passwd", "_etc_passwd"},
        {"a/b\\c", "a_b_c"},
        {"CON", "_CON"},
        {"lpt1.txt", "_lpt1.txt"},
        {"bad\x01\x1b[31mname\x7f.txt", "bad__[31mname_.txt"},
        {"..", "subfile-7"},  // nothing left: named after its index
        {" trailing. . ", "trailing"},
        {"same.txt", "same.txt"},
        {"same.txt", "same (1).txt"},
        {"SAME.txt", "SAME (2).txt"},
        {std::string(300, 'x') + ".pdf", std::string(196, 'x') + ".pdf"},
        {"invoice\xE2\x80\xAE" "fdp.exe", "invoice_fdp.exe"},  // a right-to-left override
        {"lre\xE2\x80\xAAx \xF0\x9F\x98\x80", "lre_x \xF0\x9F\x98\x80"},  // first bidi control; U+1F600
    };
    return names;
}

std::string payloadOf(size_t i) {
    return "payload " + std::to_string(i);
}

// Attachments by reference keep their long file names exactly as stored.
Bytes hostileStream() {
    MessageLayout plan;
    plan.body = "Body";
    plan.props = {Prop::string8(kTagSubject8, "Hostile")};
    for (size_t i = 0; i < hostileNames().size(); ++i) {
        AttachmentLayout attachment;
        attachment.data = bytesOf(payloadOf(i));
        attachment.props = {Prop::int32(kTagAttachMethod, kAttachByReference),
                            Prop::string8(kTagAttachLongFilename8, hostileNames()[i].stored)};
        plan.attachments.push_back(attachment);
    }
    return buildMessage(plan);
}

TEST(SafeExtraction, HostileNamesLandInsideTheFolderUnderSafeUniqueNamesThatNothingOverwrites) {
    TempDir root;
    std::string input = writeFile(root.path() / "hostile.tnef", hostileStream());
    fs::path out = root.path() / "deep" / "out";  // made by the tool
    std::vector<std::string> args = {"extract", input, "-C", out.string(), "--body", "none"};
    std::vector<std::string> withReport = args;
    withReport.push_back("--json");
    ToolRun run = runTool(withReport);
    EXPECT_EQ(run.exitCode, 0) << run.err;

    std::vector<std::string> expected;
    for (size_t i = 0; i < hostileNames().size(); ++i) {
        const std::string& name = hostileNames()[i].written;
        SCOPED_TRACE(name);
        EXPECT_EQ(readText(out / name), payloadOf(i));
        expected.push_back(name);
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(filesBelow(out), expected);
    // Nothing beside the input and the output folder anywhere under root.
    EXPECT_EQ(filesBelow(root.path()).size(), expected.size() + 1);

    Json report = run.json();
    ASSERT_EQ(report["written"].size(), hostileNames().size());
    EXPECT_EQ(report["written"][0]["name"], "../../escape");
    EXPECT_EQ(report["written"][0]["path"], (out / "___.._escape").string());

    // A file of the user's and a link that points outside the folder.
    { std::ofstream(out / "same.txt") << "mine"; }
    { std::ofstream(root / "outside") << "keep"; }
    fs::remove(out / "_etc_passwd");
    fs::create_symlink(root / "outside", out / "_etc_passwd");

    ToolRun again = runTool(args);
    EXPECT_EQ(again.exitCode, 3);
    EXPECT_NE(again.err.find("exists"), std::string::npos) << again.err;
    EXPECT_EQ(readText(out / "same.txt"), "mine");
    EXPECT_EQ(readText(root / "outside"), "keep");

    args.push_back("--overwrite");
    ToolRun replaced = runTool(args);
    EXPECT_EQ(replaced.exitCode, 0) << replaced.err;
    EXPECT_EQ(readText(out / "same.txt"), payloadOf(8));
    EXPECT_FALSE(fs::is_symlink(out / "_etc_passwd"));
    EXPECT_EQ(readText(out / "_etc_passwd"), payloadOf(1));
    EXPECT_EQ(readText(root / "outside"), "keep");
    EXPECT_EQ(filesBelow(out).size(), hostileNames().size());
}

}  // namespace
}  // namespace tneftest
