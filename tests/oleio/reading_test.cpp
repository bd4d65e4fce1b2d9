// Reading what a storage holds: files of every layout the writer makes read
// back byte for byte, names find their streams, and seek, tell and read work
// at the edges of sectors and at the end.
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
        {"v3 DIFAT, two sectors", {3, 300}, {100, 30000, 4096}},
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
    }
}

TEST(OleNames, LookupTable) {
    const std::string longest(31, 'n');
    std::vector<CfbEntryLayout> specs = {
        {"\x01Ole10Native", bytesOf("native")},  {"Größe", bytesOf("size")},
        {"\xF0\x9F\x98\x80x", bytesOf("emoji")}, {longest, bytesOf("long")},
        CfbEntryLayout::emptyStorage("Package"),
    };
    struct Case {
        std::string query;
        const char* expected;  // null: not found
    };
    const std::vector<Case> cases = {
        {"\x01Ole10Native", "native"},
        {"\x01ole10NATIVE", "native"},  // ASCII letters ignore case
        {"Ole10Native", nullptr},       // the control byte belongs to the name
        {"Größe", "size"},
        {"grÖße", nullptr},  // only ASCII letters fold
        {"\xF0\x9F\x98\x80X", "emoji"},  // a surrogate pair
        {longest, "long"},
        {"\x01Ole10Native2", nullptr},
        {"", nullptr},
        {"Package", nullptr},             // a storage, not a stream
        {"Gr\xC3", nullptr},              // cut UTF-8
        {"\xC0\x81Ole10Native", nullptr}, // overlong form of 0x01
        {"\xED\xA0\x80", nullptr},        // an encoded surrogate
    };
    OpenedStorage file(buildCfb(specs));
    ASSERT_TRUE(file.open());
    for (const Case& c : cases) {
        std::optional<Bytes> expected = c.expected ? std::optional(bytesOf(c.expected)) : std::nullopt;
        EXPECT_EQ(file.read(c.query), expected) << c.query;
    }
    // A failed search leaves no current stream.
    ASSERT_NE(file.ole.findStream(file.storage, "Größe"), 0);
    EXPECT_EQ(file.ole.findStream(file.storage, "Missing"), 0);
    EXPECT_EQ(file.ole.openStream(file.storage), nullptr);
    EXPECT_EQ(file.ole.findStream(file.storage, nullptr), 0);
}

Bytes readAt(IoObject* io, int64_t offset, int32_t origin, uint32_t count) {
    Bytes out(count);
    if (io->seek(io, offset, origin) == 0) return {};
    int32_t got = io->read(io, out.data(), count);
    out.resize(got > 0 ? size_t(got) : 0);
    return out;
}

TEST(OleStreamIo, SeekTellAndReadAtBoundaries) {
    // A mini stream (64-byte units) and regular streams of both sector sizes;
    // a second stream "t" beside each.
    for (int version : {3, 4}) {
        for (size_t size : {size_t(130), size_t(9000)}) {
            SCOPED_TRACE(std::to_string(version) + "/" + std::to_string(size));
            Bytes data = patternBytes(size, 3);
            OpenedStorage file(buildCfb({{"s", data}, {"t", bytesOf("t")}}, CfbOptions(version)));
            ASSERT_TRUE(file.open());
            ASSERT_NE(file.ole.findStream(file.storage, "s"), 0);
            IoObject* io = file.ole.openStream(file.storage);
            ASSERT_NE(io, nullptr);
            const int64_t n = int64_t(size);
            EXPECT_EQ(io->size, n);
            EXPECT_EQ(io->write, nullptr);
            ASSERT_NE(io->open(io), 0);
            for (int64_t unit : {int64_t(64), int64_t(512), int64_t(4096)}) {
                if (unit >= n) continue;
                EXPECT_EQ(readAt(io, unit - 1, kSeekSet, 2), slice(data, unit - 1, 2));
                EXPECT_EQ(readAt(io, unit, kSeekSet, 1), slice(data, unit, 1));
            }
            EXPECT_EQ(readAt(io, -1, kSeekEnd, 10), slice(data, size - 1, 1));
            EXPECT_EQ(io->tell(io), n);
            EXPECT_EQ(readAt(io, 0, kSeekEnd, 1), Bytes{});
            EXPECT_EQ(readAt(io, -20, 1, 5), slice(data, size - 20, 5));  // from the current place
            EXPECT_EQ(io->tell(io), n - 15);
            EXPECT_EQ(readAt(io, n + 10, kSeekSet, 4), Bytes{});  // past the end: nothing
            EXPECT_EQ(io->tell(io), n + 10);
            EXPECT_EQ(io->seek(io, -1, kSeekSet), 0);  // refused, the place stays
            EXPECT_EQ(io->seek(io, 1, 3), 0);          // no such origin
            EXPECT_EQ(io->seek(io, INT64_MAX, kSeekEnd), 0);
            EXPECT_EQ(io->tell(io), n + 10);
            ASSERT_NE(io->open(io), 0);  // open rewinds
            EXPECT_EQ(io->tell(io), 0);
            uint8_t byte = 0;
            EXPECT_EQ(io->read(io, &byte, 0), 0);
            EXPECT_EQ(io->read(io, nullptr, 1), 0);
            EXPECT_EQ(readAt(io, 0, kSeekSet, uint32_t(size) + 100), data);
            EXPECT_NE(io->close(io), 0);
            // One stream at a time: opening "t" releases "s".
            size_t withOneStream = file.memory.liveBlocks();
            ASSERT_NE(file.ole.findStream(file.storage, "t"), 0);
            ASSERT_NE(file.ole.openStream(file.storage), nullptr);
            EXPECT_EQ(file.memory.liveBlocks(), withOneStream);
            file.ole.closeStream(file.storage);
            file.ole.closeStream(file.storage);  // nothing left to release
        }
    }
}

}  // namespace
}  // namespace tneftest
