// The built shared library, and the OLE storage inside a real TNEF sample.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/oleio/storage_fixture.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

#ifdef TNEF_OLEIO_PATH
TEST(OleLibrary, ExportsOnlyTheEntryAndImportsNoAllocator) {
    LibrarySymbols symbols = librarySymbols(TNEF_OLEIO_PATH);
    EXPECT_EQ(symbols.defined, std::vector<std::string>{"GetOLEInterface"});
    EXPECT_FALSE(symbols.imported.empty());  // nm did run
    EXPECT_EQ(heapFunctions(symbols.imported), std::vector<std::string>{});
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
