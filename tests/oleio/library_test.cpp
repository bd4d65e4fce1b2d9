// The built shared library: one export, no allocator of its own. (The OLE
// storage inside a real sample is read by OleExtraction.CorpusPackage.)
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>

namespace tneftest {
namespace {

#ifdef TNEF_OLEIO_PATH
std::string commandOutput(const std::string& command) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return out;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    pclose(pipe);
    return out;
}

TEST(OleLibrary, ExportsOnlyTheEntryAndImportsNoAllocator) {
    const std::string path = TNEF_OLEIO_PATH;
    EXPECT_EQ(commandOutput("nm -D --defined-only --format=just-symbols '" + path + "'"),
              "GetOLEInterface\n");
    std::istringstream undefined(
        commandOutput("nm -D --undefined-only --format=just-symbols '" + path + "' | c++filt"));
    int count = 0;
    for (std::string line; std::getline(undefined, line); ++count) {
        std::string name = line.substr(0, line.find('@'));
        for (const char* banned : {"malloc", "calloc", "realloc", "free"}) EXPECT_NE(name, banned);
        EXPECT_NE(name.rfind("operator new", 0), 0u) << line;
        EXPECT_NE(name.rfind("operator delete", 0), 0u) << line;
    }
    EXPECT_GT(count, 0);  // nm did run
}
#endif

}  // namespace
}  // namespace tneftest
