// Files of every layout the writer makes read back byte for byte.
#include <gtest/gtest.h>

#include "tests/oleio/storage_fixture.h"

namespace tneftest {
namespace {

struct Layout {
    const char* label;
    CfbOptions options;
    std::vector<size_t> sizes;  // stream i is named "s<i>" and holds patternBytes(size, i)
};

TEST(OleRoundTrip, EveryLayoutReadsBackWhole) {
    const std::vector<size_t> mixed = {0, 1, 63, 64, 65, 4095, 4096, 4097, 20000};
    const std::vector<Layout> layouts = {
        {"v3", {}, mixed},
        {"v4", {4}, mixed},
        {"v3 interleaved", {3, 0, true}, {5000, 9000, 4097, 130, 70000}},
        {"v4 interleaved", {4, 0, true}, {5000, 9000, 8193, 130}},
        {"v3 DIFAT, two sectors", {3, 300}, {100, 30000, 4096}},
        {"v4 DIFAT", {4, 120}, {100, 30000, 4096}},
        {"v3 big directory", {}, std::vector<size_t>(40, 70)},
        {"v3 FAT of many sectors", {}, {300000}},
    };
    for (const Layout& layout : layouts) {
        SCOPED_TRACE(layout.label);
        std::vector<CfbEntryLayout> specs;
        for (size_t i = 0; i < layout.sizes.size(); ++i)
            specs.push_back({"s" + std::to_string(i), patternBytes(layout.sizes[i], uint8_t(i))});
        OpenedStorage file(buildCfb(specs, layout.options));
        ASSERT_TRUE(file.open());
        for (uint32_t chunk : {7u, 4096u, 1u << 20}) {
            for (const CfbEntryLayout& plan : specs) {
                SCOPED_TRACE(plan.name + " chunk " + std::to_string(chunk));
                EXPECT_EQ(file.read(plan.name, chunk), plan.data);
            }
        }
        EXPECT_EQ(file.close(), "");
    }
}

TEST(OleRoundTrip, StreamReportsItsSizeAndOneStreamAtATime) {
    OpenedStorage file(buildCfb({{"a", patternBytes(100)}, {"b", patternBytes(5000)}}));
    ASSERT_TRUE(file.open());
    EXPECT_EQ(file.ole.openStream(file.storage), nullptr);  // no current stream yet
    ASSERT_NE(file.ole.findStream(file.storage, "a"), 0);
    IoObject* a = file.ole.openStream(file.storage);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->size, 100);
    EXPECT_EQ(a->write, nullptr);
    size_t withOneStream = file.memory.liveBlocks();
    ASSERT_NE(file.ole.findStream(file.storage, "b"), 0);
    IoObject* b = file.ole.openStream(file.storage);  // releases the first
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->size, 5000);
    EXPECT_EQ(file.memory.liveBlocks(), withOneStream);
    file.ole.closeStream(file.storage);
    file.ole.closeStream(file.storage);  // nothing left to release
    file.ole.resetStream(file.storage, 0);
    EXPECT_EQ(file.ole.openStream(file.storage), nullptr);
    EXPECT_EQ(file.close(), "");
}

}  // namespace
}  // namespace tneftest
