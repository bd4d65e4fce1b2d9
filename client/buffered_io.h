// Buffering around a session's input and its extraction outputs. The module
// copies an attachment through a 4096-byte block, one read and one write per
// block; handed straight to a file, each is a system call, and each write
// also pays the file system's per-call work. These wrappers turn them into
// calls of up to kIoBufferBytes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "host/io_objects.h"

namespace tnefclient {

constexpr size_t kIoBufferBytes = 256 * 1024;

// Reads the inner object ahead. The first refill after a jump asks for 4 KiB,
// and every refill that goes on where the last one ended asks for twice as
// much, up to the buffer's size: opening a stream, which jumps from record to
// record, reads little more than the records, and a long copy reads in large
// blocks. Seeks only move the position; the inner object is moved when a
// refill needs it. Reads as large as the buffer go straight to the inner
// object.
class ReadAheadIo : public tnefhost::HostIo {
public:
    explicit ReadAheadIo(tnefhost::HostIo& inner, size_t bufferBytes = kIoBufferBytes)
        : inner_(inner.io()), buffer_(std::max<size_t>(bufferBytes, kFirstRefill)) {}

protected:
    bool doOpen() override {
        if (inner_->open(inner_) == 0) return false;
        io()->size = inner_->size;
        int64_t at = inner_->tell != nullptr ? inner_->tell(inner_) : 0;
        position_ = innerPosition_ = at < 0 ? 0 : at;
        bufferStart_ = position_;
        held_ = 0;
        return true;
    }

    int32_t doRead(void* buffer, uint32_t count) override {
        auto* out = static_cast<uint8_t*>(buffer);
        uint32_t done = 0;
        while (done < count) {
            int64_t offset = position_ - bufferStart_;
            if (offset >= 0 && offset < static_cast<int64_t>(held_)) {
                size_t n = std::min<size_t>(held_ - static_cast<size_t>(offset), count - done);
                std::memcpy(out + done, buffer_.data() + offset, n);
                done += static_cast<uint32_t>(n);
                position_ += static_cast<int64_t>(n);
                continue;
            }
            size_t wanted = count - done;
            if (!placeInner()) break;
            if (wanted >= buffer_.size()) {
                int32_t got = innerRead(out + done, static_cast<uint32_t>(wanted));
                if (got <= 0) break;
                done += static_cast<uint32_t>(got);
                position_ += got;
                continue;
            }
            bool onward = held_ > 0 && position_ == bufferStart_ + static_cast<int64_t>(held_);
            refill_ = onward ? std::min(refill_ * 2, buffer_.size()) : kFirstRefill;
            size_t ask = std::max(refill_, wanted);
            bufferStart_ = position_;
            held_ = 0;
            int32_t got = innerRead(buffer_.data(), static_cast<uint32_t>(ask));
            if (got <= 0) break;
            held_ = static_cast<size_t>(got);
        }
        return static_cast<int32_t>(done);
    }

    bool doWrite(const void*, uint32_t) override { return false; }

    bool doSeek(int64_t offset, int32_t origin) override {
        int64_t base = origin == kSeekEnd ? io()->size : origin == 1 ? position_ : 0;
        if (base + offset < 0) return false;
        position_ = base + offset;
        return true;
    }

    int64_t doTell() override { return position_; }

    bool doClose() override {
        held_ = 0;
        return inner_->close(inner_) != 0;
    }

private:
    static constexpr size_t kFirstRefill = 4096;

    // Moves the inner object to the position unless it is there already.
    bool placeInner() {
        if (innerPosition_ == position_) return true;
        if (inner_->seek(inner_, position_, kSeekSet) == 0) {
            innerPosition_ = -1;
            return false;
        }
        innerPosition_ = position_;
        return true;
    }

    int32_t innerRead(void* buffer, uint32_t count) {
        int32_t got = inner_->read(inner_, buffer, count);
        if (got > 0) innerPosition_ += got;
        return got;
    }

    IoObject* inner_;
    std::vector<uint8_t> buffer_;
    int64_t bufferStart_ = 0;    // input position of buffer_[0]
    size_t held_ = 0;            // bytes of the buffer that hold input
    size_t refill_ = kFirstRefill;
    int64_t position_ = 0;       // where the next read starts
    int64_t innerPosition_ = 0;  // where the inner object stands; -1 unknown
};

// Collects writes and hands them on in blocks. Seeking, reading and closing
// hand on what is held first. Because a failed write may now show only at a
// later call, failed() remembers whether any write to the inner object
// failed.
class WriteBehindIo : public tnefhost::HostIo {
public:
    explicit WriteBehindIo(tnefhost::HostIo& inner, size_t bufferBytes = kIoBufferBytes)
        : inner_(inner.io()), buffer_(std::max<size_t>(bufferBytes, 1)) {}

    bool failed() const { return failed_; }

protected:
    bool doOpen() override {
        held_ = 0;
        return inner_->open(inner_) != 0;
    }

    int32_t doRead(void* buffer, uint32_t count) override {
        return flush() ? inner_->read(inner_, buffer, count) : 0;
    }

    bool doWrite(const void* buffer, uint32_t count) override {
        if (count > buffer_.size() - held_ && !flush()) return false;
        if (count >= buffer_.size()) return handOn(buffer, count);
        std::memcpy(buffer_.data() + held_, buffer, count);
        held_ += count;
        return true;
    }

    bool doSeek(int64_t offset, int32_t origin) override {
        return flush() && inner_->seek(inner_, offset, origin) != 0;
    }

    int64_t doTell() override {
        int64_t at = inner_->tell(inner_);
        return at < 0 ? at : at + static_cast<int64_t>(held_);
    }

    bool doClose() override {
        bool flushed = flush();
        return inner_->close(inner_) != 0 && flushed;
    }

private:
    bool handOn(const void* bytes, size_t count) {
        if (inner_->write(inner_, bytes, static_cast<uint32_t>(count)) != 0) return true;
        failed_ = true;
        return false;
    }

    bool flush() {
        if (held_ == 0) return true;
        size_t count = held_;
        held_ = 0;
        return handOn(buffer_.data(), count);
    }

    IoObject* inner_;
    std::vector<uint8_t> buffer_;
    size_t held_ = 0;
    bool failed_ = false;
};

}  // namespace tnefclient
