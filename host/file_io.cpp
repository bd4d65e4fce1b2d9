#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "host/io_objects.h"

namespace tnefhost {

FileIo::FileIo(std::string path, Mode mode) : path_(std::move(path)), mode_(mode) {}

FileIo::~FileIo() {
    if (fd_ >= 0) ::close(fd_);
    if (adopted_ >= 0 && adopted_ != fd_) ::close(adopted_);
}

FileIo* FileIo::adopt(int fd, Mode mode) {
    auto* io = new FileIo("", mode);
    io->adopted_ = fd;
    return io;
}

bool FileIo::doOpen() {
    if (fd_ >= 0) return true;
    if (adopted_ >= 0) {
        fd_ = adopted_;
    } else {
        int flags = mode_ == Mode::kRead ? O_RDONLY : (O_RDWR | O_CREAT | O_TRUNC);
        fd_ = ::open(path_.c_str(), flags | O_CLOEXEC, 0644);
        if (fd_ < 0) return false;
    }
    struct stat info {};
    if (::fstat(fd_, &info) == 0) io()->size = static_cast<int64_t>(info.st_size);
    return true;
}

int32_t FileIo::doRead(void* buffer, uint32_t count) {
    if (fd_ < 0) return 0;
    if (count > INT32_MAX) count = INT32_MAX;
    uint32_t done = 0;
    while (done < count) {
        ssize_t n = ::read(fd_, static_cast<char*>(buffer) + done, count - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<uint32_t>(n);
    }
    return static_cast<int32_t>(done);
}

bool FileIo::doWrite(const void* buffer, uint32_t count) {
    if (fd_ < 0) return false;
    uint32_t done = 0;
    while (done < count) {
        ssize_t n = ::write(fd_, static_cast<const char*>(buffer) + done, count - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<uint32_t>(n);
    }
    return true;
}

bool FileIo::doSeek(int64_t offset, int32_t origin) {
    if (fd_ < 0) return false;
    int whence = origin == kSeekEnd ? SEEK_END : origin == 1 ? SEEK_CUR : SEEK_SET;
    return ::lseek(fd_, static_cast<off_t>(offset), whence) >= 0;
}

int64_t FileIo::doTell() {
    if (fd_ < 0) return -1;
    return static_cast<int64_t>(::lseek(fd_, 0, SEEK_CUR));
}

bool FileIo::doClose() {
    if (fd_ < 0) return true;
    bool ok = ::close(fd_) == 0;
    if (fd_ == adopted_) adopted_ = -1;
    fd_ = -1;
    return ok;
}

}  // namespace tnefhost
