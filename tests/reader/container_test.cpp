// Container info, and open over every truncation (where opening ends and what
// close does: Scanner.WhereOpeningEnds). Refused allocations and failed I/O
// calls through open and everything after it are swept in tests/sweeps.
#include <gtest/gtest.h>

#include <string>

#include "reader/operations.h"
#include "tests/support/reader_fixture.h"
#include "tests/support/rich_streams.h"

namespace tneftest {
namespace {

// Any open flags besides the root entry change nothing; an empty stream
// has only the root entry (one opened without it: Scanner.WhereOpeningEnds).
// Requests without a container, an answer or an owned result memory are
// refused.
TEST(Container, InfoCountsSubfiles) {
    const Bytes rich = wideRtfMessage();
    const struct { Bytes stream; uint32_t flags; int32_t count; } cases[] = {
        {rich, 0, 3}, {rich, 0x40000, 4}, {rich, 0xFFFBFFFF, 3}, {TnefWriter().bytes(), 0x40000, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.flags);
        OpenedStream s(c.stream, c.flags);
        ASSERT_EQ(s.status, 0);
        ContainerInfo info{-5};
        EXPECT_EQ(tnefGetContainerInfo(s.container, &info, &s.memory), 0);
        EXPECT_EQ(info.subfileCount, c.count);
    }
    OpenedStream s(rich);
    ContainerInfo info{};
    ResultMemory noOwner{nullptr, s.memory.allocator};
    ResultMemory noAllocator{&info, nullptr};
    EXPECT_EQ(tnefGetContainerInfo(nullptr, &info, &s.memory), 34);
    EXPECT_EQ(tnefGetContainerInfo(s.container, nullptr, &s.memory), 34);
    EXPECT_EQ(tnefGetContainerInfo(s.container, &info, nullptr), 34);
    EXPECT_EQ(tnefGetContainerInfo(s.container, &info, &noOwner), 34);
    EXPECT_EQ(tnefGetContainerInfo(s.container, &info, &noAllocator), 34);
}

TEST(Container, OpenSweepOverEveryTruncation) {
    Bytes stream = wideRtfMessage();
    for (size_t cut = 0; cut <= stream.size(); ++cut) {
        OpenedStream s(Bytes(stream.begin(), stream.begin() + static_cast<long>(cut)));
        if (cut < 4) {
            EXPECT_EQ(s.status, 4) << cut;
        } else {
            EXPECT_TRUE(s.status == 0 || s.status == 4) << cut << ": " << s.status;
        }
        if (s.container != nullptr) {
            EXPECT_LE(s.container->objectCount, 3) << cut;
        }
        EXPECT_EQ(s.close(), "") << cut;
    }
}

// The shared object a host loads exports one function and no allocator.
TEST(Container, SharedObjectExportsOneFunctionAndNoHeap) {
    LibrarySymbols symbols = librarySymbols(TNEF_MODULE_PATH);
    EXPECT_EQ(symbols.defined, std::vector<std::string>{"tnefGetContainerReaderInterfaceEx"});
    EXPECT_FALSE(symbols.imported.empty());  // nm did run
    EXPECT_EQ(heapFunctions(symbols.imported), std::vector<std::string>{});
}

}  // namespace
}  // namespace tneftest
