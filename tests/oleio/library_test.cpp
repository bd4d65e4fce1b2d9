// The built shared library, and the OLE storage inside a real TNEF sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "tests/oleio/storage_fixture.h"
#include "tests/support/reader_fixture.h"

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

TEST(OleLibrary, OpensTheStorageInsideACorpusSample) {
    const std::string dir = corpusDir();
    if (dir.empty()) GTEST_SKIP() << "no corpus folder: the real-world sample test is skipped";
    Bytes tnef = readFile(dir + "/MAPI_OBJECT.tnef");
    if (tnef.empty()) GTEST_SKIP() << "MAPI_OBJECT.tnef is not in " << dir;
    const uint8_t signature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    auto at = std::search(tnef.begin(), tnef.end(), std::begin(signature), std::end(signature));
    ASSERT_NE(at, tnef.end()) << "no compound file inside the sample";
    OpenedStorage file(Bytes(at, tnef.end()));  // what follows the storage does no harm
    ASSERT_TRUE(file.open());
    std::optional<Bytes> native = file.read("\x01Ole10Native");
    ASSERT_TRUE(native.has_value());
    ASSERT_GE(native->size(), 4u);
    // The stream begins with the length of what follows it.
    uint32_t declared = (*native)[0] | (*native)[1] << 8 | (*native)[2] << 16 | uint32_t((*native)[3]) << 24;
    EXPECT_EQ(declared, native->size() - 4);
    EXPECT_EQ(file.close(), "");
}

}  // namespace
}  // namespace tneftest
