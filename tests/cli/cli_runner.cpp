#include "tests/cli/cli_runner.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "tests/support/reader_fixture.h"

namespace tneftest {

namespace {

std::string shellQuoted(const std::string& arg) {
    std::string out = "'";
    for (char c : arg) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

std::string readAll(std::FILE* stream) {
    std::string out;
    char buffer[8192];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, stream)) > 0) out.append(buffer, n);
    return out;
}

}  // namespace

Json ToolRun::json() const {
    Json parsed = Json::parse(out, nullptr, false);
    EXPECT_FALSE(parsed.is_discarded()) << "not JSON: " << out;
    return parsed;
}

ToolRun runTool(const std::vector<std::string>& args, const std::string& stdinFile, bool mergeErr) {
    return runProgram(TNEF_CLI_PATH, args, stdinFile, mergeErr);
}

ToolRun runProgram(const std::string& program, const std::vector<std::string>& args,
                   const std::string& stdinFile, bool mergeErr) {
    TempDir scratch;
    std::string errPath = scratch / "stderr";
    std::string command = shellQuoted(program);
    for (const std::string& arg : args) command += " " + shellQuoted(arg);
    command += " <" + shellQuoted(stdinFile.empty() ? "/dev/null" : stdinFile) + (mergeErr ? " 2>&1" : " 2>" + shellQuoted(errPath));
    ToolRun run;
    std::FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return run;
    run.out = readAll(pipe);
    int status = ::pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.err = readText(errPath);
    return run;
}

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tnef-cli-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
}

TempDir::~TempDir() {
    std::error_code ec;
    if (!path_.empty()) std::filesystem::remove_all(path_, ec);
}

std::string writeFile(const std::filesystem::path& path, const Bytes& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path.string();
}

std::string readText(const std::string& path) {
    Bytes bytes = readFile(path);
    return std::string(bytes.begin(), bytes.end());
}

std::string sha256Of(const std::string& path) { return runProgram("sha256sum", {path}).out.substr(0, 64); }

std::vector<std::string> filesBelow(const std::filesystem::path& root) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (entry.is_regular_file()) {
            files.push_back(std::filesystem::relative(entry.path(), root).string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

Bytes damagedStream() {
    return TnefWriter()
        .version()
        .body("read before the damage")
        .record(kLevelMessage, 0x9003, propertyBlock({Prop::string8(kTagSubject8, "x")}), {0x0006, uint16_t{0xBEEF}})
        .bytes();
}

}  // namespace tneftest
