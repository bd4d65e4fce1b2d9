// The client's read-ahead input and write-behind output: the bytes and
// positions are those of the object underneath, in any pattern of calls,
// with far fewer calls reaching it.
#include <gtest/gtest.h>

#include <random>

#include "client/buffered_io.h"
#include "tests/support/tnef_writer.h"

namespace tneftest {
namespace {

using tnefclient::ReadAheadIo;
using tnefclient::WriteBehindIo;
using tnefhost::IoOp;
using tnefhost::MemoryIo;

constexpr size_t kBuffer = 64 * 1024;

Bytes readSome(IoObject* io, uint32_t count) {
    Bytes out(count);
    int32_t got = io->read(io, out.data(), count);
    out.resize(got > 0 ? static_cast<size_t>(got) : 0);
    return out;
}

// A read-ahead object, opened, over `content` in memory.
struct Ahead {
    explicit Ahead(Bytes content) : inner(std::move(content)), ahead(inner, kBuffer), a(ahead.io()) {
        EXPECT_EQ(a->open(a), 1);
    }
    MemoryIo inner;
    ReadAheadIo ahead;
    IoObject* a;
};

TEST(ReadAheadIo, ReadsWhatTheInnerObjectHoldsInAnyPatternOfSeeksAndReads) {
    Bytes content = randomBytes(300 * 1024 + 123, 1);
    Ahead f(content);
    IoObject* a = f.a;
    MemoryIo reference(content);
    IoObject* r = reference.io();
    ASSERT_EQ(r->open(r), 1);
    EXPECT_EQ(a->size, static_cast<int64_t>(content.size()));

    std::mt19937 random(2);
    const uint32_t sizes[] = {1, 2, 9, 100, 4096, 4097, 65535, 65536, 70000, 200000};
    for (int step = 0; step < 3000; ++step) {
        switch (random() % 4) {
            case 0: {
                int64_t to = random() % (content.size() + 10);
                ASSERT_EQ(a->seek(a, to, kSeekSet), r->seek(r, to, kSeekSet));
                break;
            }
            case 1: {
                int64_t back = -static_cast<int64_t>(random() % 5000);
                ASSERT_EQ(a->seek(a, back, kSeekEnd), r->seek(r, back, kSeekEnd));
                break;
            }
            default: {
                uint32_t count = sizes[random() % std::size(sizes)];
                ASSERT_EQ(readSome(a, count), readSome(r, count)) << "step " << step;
            }
        }
        ASSERT_EQ(a->tell(a), r->tell(r)) << "step " << step;
    }
}

TEST(ReadAheadIo, ALongCopyReachesTheInnerObjectInFewLargeReads) {
    Bytes content = randomBytes(1024 * 1024, 3);
    Ahead f(content);
    IoObject* a = f.a;
    Bytes copied;
    for (Bytes block; !(block = readSome(a, 4096)).empty();) {
        copied.insert(copied.end(), block.begin(), block.end());
    }
    EXPECT_EQ(copied, content);
    // Refills of 4, 8, 16 and 32 KiB, then 16 of 64 KiB, and the read that
    // finds the end.
    EXPECT_LE(f.inner.calls(IoOp::kRead), 4u + 16u + 1u);
}

TEST(ReadAheadIo, AReadAfterAJumpAsksForLittle) {
    Ahead f(randomBytes(1024 * 1024, 4));
    IoObject* a = f.a;
    ASSERT_EQ(a->seek(a, 500000, kSeekSet), 1);
    EXPECT_EQ(readSome(a, 9).size(), 9u);
    EXPECT_EQ(f.inner.io()->tell(f.inner.io()), 500000 + 4096);
}

TEST(ReadAheadIo, MovingWithinWhatItHoldsCostsNoCall) {
    Bytes content = randomBytes(100000, 5);
    Ahead f(content);
    IoObject* a = f.a;
    ASSERT_EQ(readSome(a, 100).size(), 100u);
    uint64_t calls = f.inner.calls();
    ASSERT_EQ(a->seek(a, 10, kSeekSet), 1);
    EXPECT_EQ(readSome(a, 50), Bytes(content.begin() + 10, content.begin() + 60));
    EXPECT_EQ(a->tell(a), 60);
    EXPECT_EQ(f.inner.calls(), calls);
}

TEST(ReadAheadIo, AFailedSeekOrReadOfTheInnerObjectIsRetriedByTheNextRead) {
    Bytes content = randomBytes(50000, 6);
    Ahead f(content);
    IoObject* a = f.a;
    ASSERT_EQ(a->seek(a, 20000, kSeekSet), 1);
    f.inner.failOperation(IoOp::kSeek, 1);
    EXPECT_TRUE(readSome(a, 10).empty());
    EXPECT_EQ(readSome(a, 10), Bytes(content.begin() + 20000, content.begin() + 20010));
    ASSERT_EQ(a->seek(a, 40000, kSeekSet), 1);
    f.inner.failOperation(IoOp::kRead, 1);
    EXPECT_TRUE(readSome(a, 10).empty());
    EXPECT_EQ(readSome(a, 10), Bytes(content.begin() + 40000, content.begin() + 40010));
}

TEST(ReadAheadIo, ANegativePositionIsRefused) {
    Ahead f(randomBytes(100, 7));
    IoObject* a = f.a;
    EXPECT_EQ(a->seek(a, -1, kSeekSet), 0);
    EXPECT_EQ(a->seek(a, -101, kSeekEnd), 0);
    EXPECT_EQ(a->seek(a, -100, kSeekEnd), 1);
    EXPECT_EQ(a->tell(a), 0);
}

TEST(WriteBehindIo, WritesWhatTheInnerObjectWouldHoldInAnyPatternOfCalls) {
    MemoryIo inner;
    MemoryIo reference;
    WriteBehindIo behind(inner, kBuffer);
    IoObject* w = behind.io();
    IoObject* r = reference.io();
    ASSERT_EQ(w->open(w), 1);
    ASSERT_EQ(r->open(r), 1);
    std::mt19937 random(8);
    const uint32_t sizes[] = {1, 7, 4096, 65535, 65536, 100000};
    for (int step = 0; step < 400; ++step) {
        if (random() % 5 == 0) {
            int64_t end = r->tell(r);
            int64_t to = end > 0 ? static_cast<int64_t>(random() % end) : 0;
            ASSERT_EQ(w->seek(w, to, kSeekSet), r->seek(r, to, kSeekSet));
        } else {
            Bytes data = randomBytes(sizes[random() % std::size(sizes)], step);
            ASSERT_EQ(w->write(w, data.data(), static_cast<uint32_t>(data.size())), 1);
            r->write(r, data.data(), static_cast<uint32_t>(data.size()));
        }
        ASSERT_EQ(w->tell(w), r->tell(r)) << "step " << step;
    }
    ASSERT_EQ(w->close(w), 1);
    EXPECT_EQ(inner.bytes(), reference.bytes());
    EXPECT_FALSE(behind.failed());
}

TEST(WriteBehindIo, SmallWritesReachTheInnerObjectAsFullBuffers) {
    MemoryIo inner;
    WriteBehindIo behind(inner, kBuffer);
    IoObject* w = behind.io();
    ASSERT_EQ(w->open(w), 1);
    Bytes block = randomBytes(4096, 9);
    for (int i = 0; i < 64; ++i) ASSERT_EQ(w->write(w, block.data(), 4096), 1);  // 256 KiB
    EXPECT_EQ(inner.calls(IoOp::kWrite), 3u);  // the fourth buffer is still held
    EXPECT_EQ(w->tell(w), 64 * 4096);
    ASSERT_EQ(w->close(w), 1);
    EXPECT_EQ(inner.calls(IoOp::kWrite), 4u);
    EXPECT_EQ(inner.bytes().size(), 64u * 4096u);
}

TEST(WriteBehindIo, AFailedWriteIsRememberedAndFailsTheClose) {
    MemoryIo inner;
    WriteBehindIo behind(inner, kBuffer);
    IoObject* w = behind.io();
    ASSERT_EQ(w->open(w), 1);
    Bytes data = randomBytes(1000, 10);
    ASSERT_EQ(w->write(w, data.data(), 1000), 1);  // held: nothing can fail yet
    EXPECT_FALSE(behind.failed());
    inner.failOperation(IoOp::kWrite, 1);
    EXPECT_EQ(w->close(w), 0);
    EXPECT_TRUE(behind.failed());
}

TEST(WriteBehindIo, AFailedFlushFailsTheWriteThatNeededTheRoom) {
    MemoryIo inner;
    WriteBehindIo behind(inner, kBuffer);
    IoObject* w = behind.io();
    ASSERT_EQ(w->open(w), 1);
    Bytes data = randomBytes(kBuffer - 10, 11);
    ASSERT_EQ(w->write(w, data.data(), static_cast<uint32_t>(data.size())), 1);
    inner.failOperation(IoOp::kWrite, 1);
    EXPECT_EQ(w->write(w, data.data(), 100), 0);
    EXPECT_TRUE(behind.failed());
}

}  // namespace
}  // namespace tneftest
