// The scratch object over tmpfile(), and the pass-through wrapper.
#include <cstdio>

#include "host/io_objects.h"

namespace tnefhost {

ScratchIo::~ScratchIo() {
    if (file_ != nullptr) std::fclose(file_);
}

bool ScratchIo::doOpen() {
    if (file_ == nullptr) file_ = std::tmpfile();
    return file_ != nullptr;
}

int32_t ScratchIo::doRead(void* buffer, uint32_t count) {
    if (file_ == nullptr) return 0;
    return static_cast<int32_t>(std::fread(buffer, 1, count > INT32_MAX ? INT32_MAX : count, file_));
}

bool ScratchIo::doWrite(const void* buffer, uint32_t count) {
    return file_ != nullptr && std::fwrite(buffer, 1, count, file_) == count;
}

bool ScratchIo::doSeek(int64_t offset, int32_t origin) {
    int whence = origin == kSeekEnd ? SEEK_END : origin == 1 ? SEEK_CUR : SEEK_SET;
    return file_ != nullptr && fseeko(file_, static_cast<off_t>(offset), whence) == 0;
}

int64_t ScratchIo::doTell() {
    return file_ == nullptr ? -1 : static_cast<int64_t>(ftello(file_));
}

bool ScratchIo::doClose() {
    if (file_ == nullptr) return true;
    bool ok = std::fclose(file_) == 0;
    file_ = nullptr;
    return ok;
}

bool WrapperIo::doOpen() {
    return inner_->open != nullptr && inner_->open(inner_) != 0;
}

int32_t WrapperIo::doRead(void* buffer, uint32_t count) {
    return inner_->read != nullptr ? inner_->read(inner_, buffer, count) : 0;
}

bool WrapperIo::doWrite(const void* buffer, uint32_t count) {
    return inner_->write != nullptr && inner_->write(inner_, buffer, count) != 0;
}

bool WrapperIo::doSeek(int64_t offset, int32_t origin) {
    return inner_->seek != nullptr && inner_->seek(inner_, offset, origin) != 0;
}

int64_t WrapperIo::doTell() {
    return inner_->tell != nullptr ? inner_->tell(inner_) : -1;
}

bool WrapperIo::doClose() {
    // The host's output stays open beneath the wrapper: the module still
    // measures and closes it itself once the wrapper is done.
    return true;
}

}  // namespace tnefhost
