// Text from streams shown as UTF-8: 16-bit strings, 8-bit strings in the
// message's code page, bytes that already are UTF-8.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/cli_runner.h"

namespace tneftest {
namespace {

namespace fs = std::filesystem;

// "Привет" in code page 1251, and "döcument.pdf" in code page 1252.
const std::string kPrivet1251 = "\xCF\xF0\xE8\xE2\xE5\xF2";
const std::string kPrivetUtf8 = "Привет";

Bytes streamWith(uint32_t codePage, std::vector<Prop> props, const std::string& attachmentName) {
    MessageLayout plan;
    plan.props = std::move(props);
    plan.props.push_back(Prop::int32(kTagMessageCodepage, static_cast<int32_t>(codePage)));
    AttachmentLayout attachment;
    attachment.data = bytesOf("data");
    attachment.props = {Prop::string8(kTagAttachLongFilename8, attachmentName)};
    plan.attachments.push_back(attachment);
    return buildMessage(plan);
}

TEST(CliText, SubjectsAndNamesComeOutAsUtf8) {
    struct Case {
        const char* what;
        uint32_t codePage;
        std::vector<Prop> props;
        std::string attachment;
        std::string subject;
        std::string attachmentShown;
    } cases[] = {
        {"8-bit in 1251", 1251, {Prop::string8(kTagSubject8, kPrivet1251)}, kPrivet1251 + ".txt",
         kPrivetUtf8, kPrivetUtf8 + ".txt"},
        {"8-bit in 1252", 1252, {Prop::string8(kTagSubject8, "Gr\xFC\xDF" "e")}, "d\xF6" "cument.pdf",
         "Grüße", "döcument.pdf"},
        {"already UTF-8", 1251, {Prop::string8(kTagSubject8, "Grüße")}, "naïve.txt", "Grüße",
         "naïve.txt"},
        {"16-bit", 1252, {Prop::unicode(kTagSubject16, "Grüße ☃")}, "plain.txt", "Grüße ☃",
         "plain.txt"},
    };
    TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::string file = writeFile(dir.path() / "t.tnef", streamWith(c.codePage, c.props, c.attachment));
        ToolRun list = runTool({"list", file, "--json"});
        EXPECT_EQ(list.exitCode, 0) << list.err;
        Json report = list.json();
        EXPECT_EQ(report["summary"]["subject"], c.subject);
        EXPECT_EQ(report["subfiles"][1]["name"], c.attachmentShown);

        fs::path out = dir.path() / c.what;
        ToolRun extracted = runTool({"extract", file, "-C", out.string(), "--body", "none"});
        EXPECT_EQ(extracted.exitCode, 0) << extracted.err;
        EXPECT_TRUE(fs::exists(out / c.attachmentShown));
    }
}

}  // namespace
}  // namespace tneftest
