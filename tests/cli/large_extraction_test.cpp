// The tool extracts an attachment larger than its read-ahead and
// write-behind buffers whole.
#include <gtest/gtest.h>

#include "tests/cli/cli_runner.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

TEST(CliLargeExtraction, AnAttachmentOfSeveralBuffersIsWrittenWhole) {
    TempDir dir;
    // Neither a multiple of the module's block nor of the tool's buffers.
    Bytes data = randomBytes(3 * 1024 * 1024 + 4321, 12);
    MessageLayout plan;
    plan.body = "Body";
    plan.attachments.push_back({"BIG.BIN", data, {}});
    plan.attachments.push_back({"SMALL.TXT", bytesOf("after the big one"), {}});
    std::string input = writeFile(dir.path() / "big.tnef", buildMessage(plan));
    ToolRun run = runTool({"extract", input, "-C", dir / "out"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(readFile(dir / "out/BIG.BIN"), data);
    EXPECT_EQ(readFile(dir / "out/SMALL.TXT"), bytesOf("after the big one"));
}

}  // namespace
}  // namespace tneftest
