#include "bench/counting_io.h"

#include <algorithm>

namespace tnefbench {

bool CountingIo::doOpen() {
    if (inner_->open(inner_) == 0) return false;
    io()->size = inner_->size;
    return true;
}

int32_t CountingIo::doRead(void* buffer, uint32_t count) {
    tally_.largestRead = std::max<uint64_t>(tally_.largestRead, count);
    int32_t got = inner_->read(inner_, buffer, count);
    if (got > 0) tally_.bytesRead += static_cast<uint64_t>(got);
    return got;
}

bool CountingIo::doWrite(const void* buffer, uint32_t count) {
    tally_.largestWrite = std::max<uint64_t>(tally_.largestWrite, count);
    if (inner_->write(inner_, buffer, count) == 0) return false;
    tally_.bytesWritten += count;
    return true;
}

bool CountingIo::doSeek(int64_t offset, int32_t origin) {
    return inner_->seek(inner_, offset, origin) != 0;
}

int64_t CountingIo::doTell() {
    return inner_->tell(inner_);
}

bool CountingIo::doClose() {
    return inner_->close(inner_) != 0;
}

bool DiscardIo::doOpen() {
    position_ = 0;
    return true;
}

int32_t DiscardIo::doRead(void*, uint32_t) {
    return 0;
}

bool DiscardIo::doWrite(const void*, uint32_t count) {
    tally_.largestWrite = std::max<uint64_t>(tally_.largestWrite, count);
    tally_.bytesWritten += count;
    position_ += count;
    length_ = std::max(length_, position_);
    return true;
}

bool DiscardIo::doSeek(int64_t offset, int32_t origin) {
    int64_t base = origin == kSeekEnd ? length_ : origin == 1 ? position_ : 0;
    if (base + offset < 0) return false;
    position_ = base + offset;
    return true;
}

int64_t DiscardIo::doTell() {
    return position_;
}

bool DiscardIo::doClose() {
    return true;
}

}  // namespace tnefbench
