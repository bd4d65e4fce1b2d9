#include "mail/payload_store.h"

#include <unistd.h>

#include <algorithm>

#include "client/buffered_io.h"
#include "mail/file_stream.h"
#include "mail/scratch_file.h"

namespace tnefmail {

namespace {

// An output that writes at `base` of a descriptor and onward, with positions
// counted from `base`: the module sees a file of its own.
class SliceIo : public tnefhost::HostIo {
public:
    SliceIo(int fd, int64_t base) : fd_(fd), base_(base) {}
    int64_t high() const { return high_; }

protected:
    bool doOpen() override { return true; }
    int32_t doRead(void* buffer, uint32_t count) override {
        int64_t left = std::max<int64_t>(high_ - position_, 0);
        auto wanted = static_cast<size_t>(std::min<int64_t>({count, left, INT32_MAX}));
        ssize_t n = ::pread(fd_, buffer, wanted, static_cast<off_t>(base_ + position_));
        if (n <= 0) return 0;
        position_ += n;
        return static_cast<int32_t>(n);
    }
    bool doWrite(const void* buffer, uint32_t count) override {
        const char* at = static_cast<const char*>(buffer);
        uint32_t done = 0;
        while (done < count) {
            ssize_t n = ::pwrite(fd_, at + done, count - done, static_cast<off_t>(base_ + position_));
            if (n <= 0) return false;
            done += static_cast<uint32_t>(n);
            position_ += n;
        }
        high_ = std::max(high_, position_);
        return true;
    }
    bool doSeek(int64_t offset, int32_t origin) override {
        int64_t from = origin == kSeekEnd ? high_ : origin == 1 ? position_ : 0;
        if (from + offset < 0) return false;
        position_ = from + offset;
        return true;
    }
    int64_t doTell() override { return position_; }
    bool doClose() override { return true; }

private:
    int fd_;
    int64_t base_;
    int64_t position_ = 0;
    int64_t high_ = 0;
};

}  // namespace

PayloadStore::~PayloadStore() {
    if (fd_ >= 0) ::close(fd_);
}

bool PayloadStore::open(std::string* error) {
    fd_ = makeScratchFile(error);
    return fd_ >= 0;
}

tnefclient::ExtractOutcome PayloadStore::extract(tnefclient::Session& session, int32_t index,
                                                 const tnefclient::ExtractSettings& settings,
                                                 Slice* slice) {
    SliceIo target(fd_, end_);
    tnefclient::WriteBehindIo output(target);
    tnefclient::ExtractOutcome outcome = session.extract(index, output.io(), settings);
    bool closed = !output.isOpen() || output.io()->close(output.io()) != 0;
    if (outcome.status == kTnefOk && (output.failed() || !closed)) {
        outcome.status = kTnefOutputUnusable;
    }
    slice->begin = end_;
    slice->end = end_ + target.high();
    end_ = slice->end;
    return outcome;
}

bool PayloadStore::append(const std::string& bytes, Slice* slice) {
    if (::pwrite(fd_, bytes.data(), bytes.size(), static_cast<off_t>(end_)) !=
        static_cast<ssize_t>(bytes.size())) {
        return false;
    }
    slice->begin = end_;
    slice->end = end_ + static_cast<int64_t>(bytes.size());
    end_ = slice->end;
    return true;
}

GRef<GMimeStream> PayloadStore::stream(const Slice& slice) const {
    return fileRangeStream(fd_, slice.begin, slice.end);
}

std::string PayloadStore::head(const Slice& slice, size_t count) const {
    std::string bytes(static_cast<size_t>(std::min<int64_t>(slice.size(), count)), '\0');
    ssize_t n = ::pread(fd_, bytes.data(), bytes.size(), static_cast<off_t>(slice.begin));
    bytes.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return bytes;
}

}  // namespace tnefmail
