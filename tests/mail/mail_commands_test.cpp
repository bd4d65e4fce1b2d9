// list, extract, props and batch on mail: the TNEF parts of messages,
// mboxes and maildirs, found by content, picked with --part.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/cli/cli_runner.h"
#include "tests/mail/mail_kit.h"

namespace tneftest {
namespace {

GRef<GMimeObject> sampleTnefPart(const std::string& subject, const std::string& attachment) {
    return tnefPart(
        noteMessage(subject, "Body of " + subject, {{attachment, bytesOf("data of " + attachment), {}}}));
}

TEST(MailCommands, EachCommandReadsTheTnefPartsOfMailAndBatchGivesEachAFolder) {
    TempDir dir;
    // Two TNEF parts in one message; a message without TNEF; an mbox of a
    // message without TNEF and one with; a maildir holding the two-part message.
    std::string two = messageBytes(multipart("mixed", {sampleTnefPart("First", "a.txt"),
                                                       sampleTnefPart("Second", "b.txt")}));
    std::string none = messageBytes(textPart("Hi\n"), "n@x");
    std::ofstream(dir / "two.eml") << two;
    std::ofstream(dir / "none.eml") << none;
    std::ofstream(dir / "box.mbox") << mboxEntry("a@x", none)
                                    << mboxEntry("b@x", messageBytes(sampleTnefPart("Third", "c.txt"), "t@x"));
    makeMaildir(dir / "md");
    std::ofstream(dir / "md/new/1.host") << two;
    struct Case {
        std::vector<std::string> args;
        std::string stdinFile;
        int exitCode;
        std::string jsonPointer;  // into the JSON report
        Json expected;
    } cases[] = {
        {{"list", dir / "two.eml", "--json"}, "", 0, "/parts/1/subfiles/1/name", "b.txt"},
        {{"list", "-", "--json"}, dir / "two.eml", 0, "/parts/1/message/messageId", "<m1@example.com>"},
        {{"list", dir / "box.mbox", "--json", "--part", "0"}, "", 0, "/parts/0/message/number", 1},
        {{"list", dir / "md", "--json"}, "", 0, "/parts/0/message/file", dir / "md/new/1.host"},
        {{"props", dir / "two.eml", "--json", "--part", "1"}, "", 0, "/properties/5/value", "Second"},
        {{"extract", dir / "two.eml", "--json", "-C", dir / "out"}, "", 0, "/part/mimePart", "1"},
        {{"extract", dir / "box.mbox", "--json", "-C", dir / "out"}, "", 0, "/written/1/name", "c.txt"},
        {{"list", dir / "none.eml", "--json"}, "", 2, "/error", "no TNEF part in the message"},
        {{"props", dir / "two.eml", "--part", "2"}, "", 1, "", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args[1]);
        ToolRun run = runTool(c.args, c.stdinFile);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        if (!c.jsonPointer.empty()) {
            EXPECT_EQ(run.json().at(Json::json_pointer(c.jsonPointer)), c.expected);
        }
    }
    ToolRun batch = runTool({"batch", dir / "box.mbox", dir / "two.eml", dir / "none.eml", "-C", dir / "batch", "--json"});
    EXPECT_EQ(batch.exitCode, 0) << batch.err;
    EXPECT_EQ(batch.json()["counts"], (Json{{"files", 4}, {"ok", 3}, {"partial", 0}, {"failed", 0}, {"noTnef", 1}}));
    EXPECT_EQ(batch.json()["files"][3]["outcome"], "no TNEF");
    EXPECT_EQ(filesBelow(dir.path() / "batch"),
              (std::vector<std::string>{"box.mbox/message 1/Third.mail.txt", "box.mbox/message 1/c.txt",
                                        "two.eml/part 0/First.mail.txt", "two.eml/part 0/a.txt",
                                        "two.eml/part 1/Second.mail.txt", "two.eml/part 1/b.txt"}));
}

}  // namespace
}  // namespace tneftest
