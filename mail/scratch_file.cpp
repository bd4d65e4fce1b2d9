#include "mail/scratch_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace tnefmail {

int makeScratchFile(std::string* error) {
    const char* folder = std::getenv("TMPDIR");
    std::string pattern = std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") +
                          "/tnef-mail-XXXXXX";
    int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd < 0) {
        *error = "cannot create a scratch file in " + pattern.substr(0, pattern.rfind('/')) + ": " +
                 std::strerror(errno);
        return -1;
    }
    ::unlink(pattern.c_str());
    return fd;
}

bool writeAll(int fd, const void* bytes, size_t size) {
    const char* at = static_cast<const char*>(bytes);
    while (size > 0) {
        ssize_t n = ::write(fd, at, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        at += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

}  // namespace tnefmail
