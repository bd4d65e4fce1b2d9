// The built shared library: one export, no allocator of its own. (The OLE
// storage inside a real sample is extracted by the corpus checks of the tool.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

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

}  // namespace
}  // namespace tneftest
