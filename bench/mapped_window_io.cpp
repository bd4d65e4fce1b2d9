#include "bench/mapped_window_io.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace tnefbench {

namespace {

constexpr int64_t kPage = 4096;

}  // namespace

MappedWindowIo::~MappedWindowIo() {
    doClose();
}

bool MappedWindowIo::doOpen() {
    if (fd_ >= 0) return true;
    fd_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd_ < 0) return false;
    struct stat info {};
    if (::fstat(fd_, &info) != 0) return false;
    io()->size = static_cast<int64_t>(info.st_size);
    position_ = 0;
    return true;
}

void MappedWindowIo::unmap() {
    if (window_ != nullptr) ::munmap(window_, windowLength_);
    window_ = nullptr;
    windowLength_ = 0;
}

bool MappedWindowIo::mapAt(int64_t position) {
    unmap();
    windowStart_ = position / kPage * kPage;
    if (windowStart_ >= io()->size) return false;
    windowLength_ = static_cast<size_t>(
        std::min<int64_t>(static_cast<int64_t>(windowBytes_), io()->size - windowStart_));
    void* mapped = ::mmap(nullptr, windowLength_, PROT_READ, MAP_SHARED | MAP_POPULATE, fd_,
                          static_cast<off_t>(windowStart_));
    if (mapped == MAP_FAILED) {
        windowLength_ = 0;
        return false;
    }
    window_ = static_cast<uint8_t*>(mapped);
    return true;
}

int32_t MappedWindowIo::doRead(void* buffer, uint32_t count) {
    auto* out = static_cast<uint8_t*>(buffer);
    uint32_t done = 0;
    while (done < count && position_ < io()->size) {
        int64_t offset = position_ - windowStart_;
        if (window_ == nullptr || offset < 0 || offset >= static_cast<int64_t>(windowLength_)) {
            if (!mapAt(position_)) break;
            offset = position_ - windowStart_;
        }
        size_t n = std::min<size_t>(windowLength_ - static_cast<size_t>(offset), count - done);
        std::memcpy(out + done, window_ + offset, n);
        done += static_cast<uint32_t>(n);
        position_ += static_cast<int64_t>(n);
    }
    return static_cast<int32_t>(done);
}

bool MappedWindowIo::doWrite(const void*, uint32_t) {
    return false;
}

bool MappedWindowIo::doSeek(int64_t offset, int32_t origin) {
    int64_t base = origin == kSeekEnd ? io()->size : origin == 1 ? position_ : 0;
    if (base + offset < 0) return false;
    position_ = base + offset;
    return true;
}

int64_t MappedWindowIo::doTell() {
    return position_;
}

bool MappedWindowIo::doClose() {
    unmap();
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
    return true;
}

}  // namespace tnefbench
