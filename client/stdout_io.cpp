#include "client/stdout_io.h"

#include <unistd.h>

#include <cerrno>

namespace tnefclient {

bool StdoutIo::doWrite(const void* buffer, uint32_t count) {
    const auto* bytes = static_cast<const char*>(buffer);
    uint32_t done = 0;
    while (done < count) {
        ssize_t n = ::write(STDOUT_FILENO, bytes + done, count - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            failed_ = true;
            return false;
        }
        done += static_cast<uint32_t>(n);
    }
    written_ += count;
    return true;
}

bool StdoutIo::doSeek(int64_t offset, int32_t origin) {
    // Only the two positions that mean "where the text already stands" can
    // be had on a stream that moves forward only.
    return (origin == kSeekSet && offset == written_) || (origin == kSeekEnd && offset == 0);
}

}  // namespace tnefclient
