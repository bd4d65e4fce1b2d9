#include <algorithm>
#include <cstring>

#include "host/io_objects.h"

namespace tnefhost {

MemoryIo::MemoryIo(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {
    io()->size = static_cast<int64_t>(bytes_.size());
}

bool MemoryIo::doOpen() {
    position_ = 0;
    return true;
}

int32_t MemoryIo::doRead(void* buffer, uint32_t count) {
    int64_t size = static_cast<int64_t>(bytes_.size());
    if (position_ >= size) return 0;
    int64_t n = std::min<int64_t>(count, size - position_);
    n = std::min<int64_t>(n, INT32_MAX);
    std::memcpy(buffer, bytes_.data() + position_, static_cast<size_t>(n));
    position_ += n;
    return static_cast<int32_t>(n);
}

bool MemoryIo::doWrite(const void* buffer, uint32_t count) {
    size_t end = static_cast<size_t>(position_) + count;
    if (end > bytes_.size()) bytes_.resize(end);
    if (count != 0) std::memcpy(bytes_.data() + position_, buffer, count);
    position_ = static_cast<int64_t>(end);
    return true;
}

bool MemoryIo::doSeek(int64_t offset, int32_t origin) {
    int64_t base = origin == kSeekEnd ? static_cast<int64_t>(bytes_.size())
                   : origin == 1      ? position_
                                      : 0;
    int64_t target = base + offset;
    if (target < 0) return false;
    position_ = target;
    return true;
}

int64_t MemoryIo::doTell() {
    return position_;
}

bool MemoryIo::doClose() {
    return true;
}

}  // namespace tnefhost
