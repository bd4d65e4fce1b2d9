#include "tests/support/reader_fixture.h"

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "reader/operations.h"

namespace tneftest {

OpenedStream::OpenedStream(const Bytes& stream, uint32_t flags, Deferred)
    : input(stream), flags_(flags) {
    memory.owner = this;
    memory.allocator = results.allocator();
}

OpenedStream::OpenedStream(const Bytes& stream, uint32_t flags)
    : OpenedStream(stream, flags, Deferred{}) {
    open();
}

void OpenedStream::open() {
    container = tnefOpenContainer(input.io(), host.context(), flags_, 0, 0, &status);
}

std::string OpenedStream::close() {
    if (!closed_) {
        tnefCloseContainer(container);
        container = nullptr;
        closed_ = true;
    }
    host.memory().clearFaults();
    return host.memory().leakReport();
}

OpenedStream::~OpenedStream() {
    close();
}

TnefObject* objectAt(TnefContainer* container, int32_t place) {
    return tnefObjectAt(container, place);
}

std::string corpusDir() {
    const char* env = std::getenv("TNEF_CORPUS");
    std::string dir = env != nullptr && *env != '\0' ? env : TNEF_DEFAULT_CORPUS;
    struct stat info {};
    if (::stat(dir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return {};
    return dir;
}

Bytes readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace tneftest
