// Running the built tnef-reader in end-to-end tests.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/tnef_writer.h"

namespace tneftest {

using Json = nlohmann::ordered_json;

struct ToolRun {
    int exitCode = -1;
    std::string out;
    std::string err;
    Json json() const;  // stdout parsed; fails the test when it isn't JSON
};

// Runs the tool with `args`; standard input from `stdinFile` when given,
// else from /dev/null. With `mergeErr`, stderr goes into `out` as well.
ToolRun runTool(const std::vector<std::string>& args, const std::string& stdinFile = "",
                bool mergeErr = false);
// Runs `program` (a path, or a name looked up on $PATH) the same way.
ToolRun runProgram(const std::string& program, const std::vector<std::string>& args,
                   const std::string& stdinFile = "", bool mergeErr = false);

// A fresh folder, removed with everything in it at the end of the scope.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

std::string writeFile(const std::filesystem::path& path, const Bytes& bytes);
// The bytes of the file at `path`, as a string.
std::string readText(const std::string& path);
std::string sha256Of(const std::string& path);
// Every file below `root`, as paths relative to it.
std::vector<std::string> filesBelow(const std::filesystem::path& root);

// A stream with a body whose next property block has a wrong checksum: the
// body can be read, then opening the message fails.
Bytes damagedStream();

}  // namespace tneftest
