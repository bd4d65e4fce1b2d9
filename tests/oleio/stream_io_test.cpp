// Seek, tell and read of a stream at the edges of its sectors and its end.
#include <gtest/gtest.h>

#include "tests/oleio/storage_fixture.h"

namespace tneftest {
namespace {

Bytes readAt(IoObject* io, int64_t offset, int32_t origin, uint32_t count) {
    Bytes out(count);
    if (io->seek(io, offset, origin) == 0) return {};
    int32_t got = io->read(io, out.data(), count);
    out.resize(got > 0 ? size_t(got) : 0);
    return out;
}

TEST(OleStreamIo, SeekTellAndReadAtBoundaries) {
    // A mini stream (64-byte units) and regular streams of both sector sizes.
    for (int version : {3, 4}) {
        for (size_t size : {size_t(130), size_t(9000)}) {
            SCOPED_TRACE(std::to_string(version) + "/" + std::to_string(size));
            Bytes data = patternBytes(size, 3);
            OpenedStorage file(buildCfb({{"s", data}}, CfbOptions(version)));
            ASSERT_TRUE(file.open());
            ASSERT_NE(file.ole.findStream(file.storage, "s"), 0);
            IoObject* io = file.ole.openStream(file.storage);
            ASSERT_NE(io, nullptr);
            ASSERT_NE(io->open(io), 0);
            const int64_t n = int64_t(size);
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
            file.ole.closeStream(file.storage);
            EXPECT_EQ(file.close(), "");
        }
    }
}

}  // namespace
}  // namespace tneftest
