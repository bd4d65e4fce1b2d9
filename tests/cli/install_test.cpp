// The tool as people get it: unpacked from its Debian package (made from the
// install rules), it finds its module and OLE library and reads the demo
// stream as the built tool does.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "tests/cli/cli_runner.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

namespace fs = std::filesystem;

const std::string kDemo = std::string(TNEF_SOURCE_DIR) + "/samples/demo.tnef";

// What `tool` makes of the demo stream: the listing, and every file it
// extracts with its bytes.
std::pair<Json, std::map<std::string, Bytes>> demoSeenBy(const std::string& tool) {
    TempDir out;
    ToolRun extract = runProgram(tool, {"extract", kDemo, "-C", out.path().string()});
    EXPECT_EQ(extract.exitCode, 0) << tool << "\n" << extract.err;
    std::map<std::string, Bytes> files;
    for (const std::string& file : filesBelow(out.path())) files[file] = readFile(out / file);
    EXPECT_EQ(files.size(), 3u) << tool;  // the message, an attachment, an unpacked OLE object
    return {runProgram(tool, {"list", kDemo, "--json"}).json(), files};
}

TEST(CliInstall, TheDebianPackageDeclaresItsDependenciesAndHoldsAWorkingTool) {
    TempDir dir;
    ToolRun pack = runProgram(TNEF_CPACK, {"-G", "DEB", "--config", std::string(TNEF_BUILD_DIR) + "/CPackConfig.cmake",
                                           "-B", dir.path().string()});
    ASSERT_EQ(pack.exitCode, 0) << pack.out << pack.err;
    std::string deb = dir / "tnef-reader_" TNEF_VERSION "_amd64.deb";
    ToolRun info = runProgram("dpkg-deb", {"--field", deb, "Depends"});
    ASSERT_EQ(info.exitCode, 0) << info.err;
    EXPECT_NE(info.out.find("libc6"), std::string::npos) << info.out;
    // Unpacked anywhere, the install rules' files are there and the tool finds its libraries.
    ASSERT_EQ(runProgram("dpkg-deb", {"-x", deb, dir / "root"}).exitCode, 0);
    for (const char* file : {"bin/tnef-reader", "lib/tnef-reader/libtnefreader.so",
                             "lib/tnef-reader/libzdolefio.so", "include/tnef-reader/host.h",
                             "share/man/man1/tnef-reader.1",
                             "share/bash-completion/completions/tnef-reader"}) {
        EXPECT_TRUE(fs::exists(dir.path() / "root/usr" / file)) << file;
    }
    EXPECT_EQ(demoSeenBy(dir / "root/usr/bin/tnef-reader"), demoSeenBy(TNEF_CLI_PATH));
}

}  // namespace
}  // namespace tneftest
