// The tool as people get it: unpacked from its Debian package (made from the
// install rules), it finds its module and OLE library and reads the demo
// stream as the built tool does; its manual page renders and, like its bash
// completion, knows every command and option.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>

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

// Every command of the tool, with the options its --help lists (-h aside).
std::map<std::string, std::set<std::string>> commandsAndOptions() {
    auto optionsIn = [](const std::string& help) {
        std::set<std::string> options;
        std::istringstream lines(help);
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("  -", 0) != 0) continue;
            std::istringstream names(line.substr(2, line.find(' ', 2) - 2));
            for (std::string name; std::getline(names, name, ',');) {
                if (name != "-h") options.insert(name);
            }
        }
        return options;
    };
    std::map<std::string, std::set<std::string>> commands;
    std::string help = runTool({"--help"}).out;
    std::istringstream lines(help.substr(help.find("Subcommands:")));
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line) && line.rfind("  ", 0) == 0) {
        std::string command = line.substr(2, line.find(' ', 2) - 2);
        commands[command] = optionsIn(runTool({command, "--help"}).out);
    }
    commands[""] = optionsIn(help);
    return commands;
}

TEST(CliInstall, TheManualPageAndTheCompletionKnowEveryCommandAndOption) {
    auto commands = commandsAndOptions();
    ASSERT_EQ(commands.size(), 7u);
    std::string page = std::string(TNEF_SOURCE_DIR) + "/cli/tnef-reader.1";
    ToolRun man = runProgram("env", {"LC_ALL=C", "MANWIDTH=100", "man", "--warnings", "-l", page});
    ASSERT_EQ(man.exitCode, 0) << man.err;
    EXPECT_EQ(man.err, "");  // no warning from groff
    for (const char* section : {"SYNOPSIS", "COMMANDS", "EXIT STATUS", "JSON OUTPUT", "EXAMPLES"}) {
        EXPECT_NE(man.out.find("\n" + std::string(section) + "\n"), std::string::npos) << section;
    }
    std::string completion = std::string(TNEF_SOURCE_DIR) + "/cli/tnef-reader.bash";
    for (const auto& [command, options] : commands) {
        SCOPED_TRACE(command);
        if (!command.empty()) {
            EXPECT_NE(man.out.find("\n   " + command + " "), std::string::npos);
        }
        for (const std::string& option : options) {
            EXPECT_NE(man.out.find(option), std::string::npos) << option;
        }
        // What the completion offers after "tnef-reader COMMAND -".
        std::string words = "tnef-reader " + (command.empty() ? "" : command + " ") + "-";
        ToolRun offered = runProgram("bash", {"-c", "source " + completion + "; COMP_WORDS=(" + words +
                                                        "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
                                                        "_tnef_reader; printf '%s\\n' \"${COMPREPLY[@]}\""});
        std::set<std::string> expected = options;
        expected.insert("--help");
        std::set<std::string> got;
        std::istringstream lines(offered.out);
        for (std::string line; std::getline(lines, line);) got.insert(line);
        EXPECT_EQ(got, expected) << offered.err;
    }
}

}  // namespace
}  // namespace tneftest
