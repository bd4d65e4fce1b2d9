// The client's read-ahead input and write-behind output: the bytes and
// positions are those of the object underneath, in any pattern of calls,
// and failures of that object reach the caller.
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

// A position before the start is refused; a failed seek or read of the
// inner object fails the read and is retried by the next one.
TEST(ReadAheadIo, FailuresAreReportedAndRecoveredFrom) {
    Bytes content = randomBytes(50000, 6);
    Ahead f(content);
    IoObject* a = f.a;
    EXPECT_EQ(a->seek(a, -1, kSeekSet), 0);
    EXPECT_EQ(a->seek(a, -50001, kSeekEnd), 0);
    EXPECT_EQ(a->seek(a, -50000, kSeekEnd), 1);
    EXPECT_EQ(a->tell(a), 0);
    for (IoOp failing : {IoOp::kSeek, IoOp::kRead}) {
        int64_t at = failing == IoOp::kSeek ? 20000 : 40000;
        ASSERT_EQ(a->seek(a, at, kSeekSet), 1);
        f.inner.failOperation(failing, 1);
        EXPECT_TRUE(readSome(a, 10).empty());
        EXPECT_EQ(readSome(a, 10), Bytes(content.begin() + at, content.begin() + at + 10));
    }
}

// A write-behind object, opened, over an empty object in memory.
struct Behind {
    Behind() : behind(inner, kBuffer), w(behind.io()) { EXPECT_EQ(w->open(w), 1); }
    MemoryIo inner;
    WriteBehindIo behind;
    IoObject* w;
};

TEST(WriteBehindIo, WritesWhatTheInnerObjectWouldHoldInAnyPatternOfCalls) {
    Behind f;
    IoObject* w = f.w;
    MemoryIo reference;
    IoObject* r = reference.io();
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
    EXPECT_EQ(f.inner.bytes(), reference.bytes());
    EXPECT_FALSE(f.behind.failed());
}

// A write held in the buffer can't fail; when handing it on fails, the
// close (or the write that needed the room) fails, and failed() says so.
TEST(WriteBehindIo, AFailedWriteOfTheInnerObjectFailsTheCallThatMadeIt) {
    for (bool byClose : {true, false}) {
        SCOPED_TRACE(byClose ? "close" : "write");
        Behind f;
        IoObject* w = f.w;
        Bytes data = randomBytes(byClose ? 1000 : kBuffer - 10, 10);
        ASSERT_EQ(w->write(w, data.data(), static_cast<uint32_t>(data.size())), 1);
        EXPECT_FALSE(f.behind.failed());
        f.inner.failOperation(IoOp::kWrite, 1);
        EXPECT_EQ(byClose ? w->close(w) : w->write(w, data.data(), 100), 0);
        EXPECT_TRUE(f.behind.failed());
    }
}

}  // namespace
}  // namespace tneftest
