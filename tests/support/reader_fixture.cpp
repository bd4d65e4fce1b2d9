#include "tests/support/reader_fixture.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "reader/operations.h"

namespace tneftest {

namespace {

tnefhost::HostOptions testHostOptions() {
    tnefhost::HostOptions options;
    options.libraryDir = TNEF_BUILD_DIR;
    return options;
}

}  // namespace

OpenedStream::OpenedStream(const Bytes& stream, uint32_t flags, Deferred)
    : host(testHostOptions()), input(stream), flags_(flags) {
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

Extraction extractSubfile(OpenedStream& stream, int32_t index, uint32_t flags, CharsetId wanted) {
    tnefhost::MemoryIo output;
    ExtractRequest request{};
    request.outputCharset = wanted;
    Extraction result;
    result.status =
        tnefExtractSubfile(stream.container, index, output.io(), &request, &stream.memory, flags);
    result.bytes = output.bytes();
    result.size = output.io()->size;
    result.leftOpen = output.isOpen();
    result.openCalls = output.calls(tnefhost::IoOp::kOpen);
    result.resultFlags = request.resultFlags;
    if (request.subfileName != nullptr) result.subfileName = request.subfileName;
    if (request.subfilePath != nullptr) result.subfilePath = request.subfilePath;
    std::copy(std::begin(request.detectedFormat), std::end(request.detectedFormat),
              std::begin(result.detectedFormat));
    result.outputCharsetAfter = request.outputCharset;
    stream.results.release(request.subfileName);
    stream.results.release(request.subfilePath);
    return result;
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

bool inOrder(const std::string& text, const std::vector<std::string>& words) {
    size_t at = 0;
    for (const std::string& word : words) {
        at = text.find(word, at);
        if (at == std::string::npos) return false;
        at += word.size();
    }
    return true;
}

}  // namespace tneftest
