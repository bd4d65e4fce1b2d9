#include "bench/process_memory.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace tnefbench {

namespace {

int64_t statusField(const char* name) {
    std::FILE* file = std::fopen("/proc/self/status", "r");
    if (file == nullptr) return -1;
    char line[256];
    int64_t value = -1;
    size_t length = std::strlen(name);
    while (std::fgets(line, sizeof line, file) != nullptr) {
        if (std::strncmp(line, name, length) == 0 && line[length] == ':') {
            long long kib = -1;
            if (std::sscanf(line + length + 1, "%lld", &kib) == 1) value = kib;
            break;
        }
    }
    std::fclose(file);
    return value;
}

}  // namespace

int64_t residentKib() {
    return statusField("VmRSS");
}

int64_t residentPeakKib() {
    return statusField("VmHWM");
}

bool resetResidentPeak() {
    int fd = ::open("/proc/self/clear_refs", O_WRONLY | O_CLOEXEC);
    if (fd < 0) return false;
    bool ok = ::write(fd, "5", 1) == 1;
    ::close(fd);
    return ok;
}

}  // namespace tnefbench
