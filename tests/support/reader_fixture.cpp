#include "tests/support/reader_fixture.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <sstream>

#include "reader/operations.h"

namespace tneftest {

namespace {

using tnefhost::HostMemory;
using tnefhost::MemoryIo;
using tnefhost::SharedIoFaults;

tnefhost::HostOptions testHostOptions(HostMemory* memory = nullptr, SharedIoFaults* io = nullptr) {
    tnefhost::HostOptions options;
    options.libraryDir = TNEF_BUILD_DIR;
    options.memory = memory;
    options.madeIoFaults = io;
    return options;
}

// Tags asked for in request mode: present and absent, fixed and counted.
constexpr MetadataRequest kRequests[] = {
    {0, kTagSubject16},        {0, kTagSubject8},        {0, kTagClientSubmitTime},
    {0, kTagImportance},       {0, kTagAttachLongFilename8}, {0, kTagAttachLongFilename16},
    {0, kTagAttachDataBinary}, {0, kTagRtfCompressed},   {0, 0x7FFF0003},
};

class Session {
public:
    Session(const Bytes& stream, const SessionFaults& faults, SessionReport& report)
        : stream_(stream), report_(report) {
        io_.failAt = faults.failIoCall;
        host_ = std::make_unique<tnefhost::PosixHost>(testHostOptions(&hostMemory_, &io_));
        hostMemory_.refuseRequest(faults.refuseHostRequest);
        results_.refuseRequest(faults.refuseResultRequest);
        if (faults.refuseAbove != 0) {
            hostMemory_.refuseAbove(faults.refuseAbove);
            results_.refuseAbove(faults.refuseAbove);
        }
        memory_.owner = this;
        memory_.allocator = results_.allocator();
    }

    void run() {
        for (uint32_t openFlags : {0u, uint32_t{kTnefOpenRootEntry}}) runContainer(openFlags);
        report_.hostRequests = hostMemory_.requests();
        report_.resultRequests = results_.requests();
        report_.ioCalls = io_.calls;
        host_.reset();
        hostMemory_.clearFaults();
        if (std::string leaks = hostMemory_.leakReport(); !leaks.empty()) {
            problem("module memory left allocated:\n" + leaks);
        }
        if (results_.liveBlocks() != 0) problem("result memory the host could not release");
    }

private:
    void runContainer(uint32_t openFlags) {
        MemoryIo input(stream_);
        input.joinFaults(&io_);
        int32_t status = -1;
        TnefContainer* container =
            tnefOpenContainer(input.io(), host_->context(), openFlags, 0, 0, &status);
        expect("open", status, {0, 2, 4});
        if (container == nullptr) return;
        ContainerInfo info{};
        expect("container info", tnefGetContainerInfo(container, &info, &memory_), {0});
        for (int32_t index = 0; index < info.subfileCount; ++index) {
            listSubfile(container, index);
            queryMetadata(container, index);
            // Extractions run on the container without the root entry; the
            // root entry only moves the indexes.
            if (openFlags == 0) extractEveryForm(container, index);
        }
        tnefCloseContainer(container);
    }

    void listSubfile(TnefContainer* container, int32_t index) {
        SubfileInfo info{};
        expect("subfile info", tnefGetSubfileInfo(container, index, &info, &memory_), {0, 2, 6});
        results_.release(info.name);
        results_.release(info.children);
    }

    void queryMetadata(TnefContainer* container, int32_t index) {
        MetadataResult byDefault{};
        expect("default metadata", tnefGetSubfileMetadata(container, index, 0, nullptr, &byDefault, &memory_),
               {0, 2});
        releaseMetadata(results_, byDefault, byDefault.count);
        MetadataRequest copies[std::size(kRequests)];
        MetadataRequest* list[std::size(kRequests)];
        for (size_t i = 0; i < std::size(kRequests); ++i) {
            copies[i] = kRequests[i];
            list[i] = &copies[i];
        }
        MetadataResult byTag{};
        expect("metadata by tag",
               tnefGetSubfileMetadata(container, index, static_cast<int32_t>(std::size(list)), list,
                                      &byTag, &memory_),
               {0, 2});
        releaseMetadata(results_, byTag, byTag.count);
    }

    // The body forms matter for the message; attachments and OLE objects
    // are also extracted with each, since the dispatcher decides by object.
    void extractEveryForm(TnefContainer* container, int32_t index) {
        for (uint32_t flags : {0u, uint32_t{kTnefExtractOmitHeader}, uint32_t{kTnefExtractPreferStoredBody},
                               uint32_t{kTnefExtractOmitHeader | kTnefExtractPreferStoredBody}}) {
            for (CharsetId wanted : {kCharsetNone, kCharsetUtf8, kCharsetUnicode}) {
                MemoryIo output;
                output.joinFaults(&io_);
                ExtractRequest request{};
                request.outputCharset = wanted;
                ++report_.extractions;
                expect("extraction",
                       tnefExtractSubfile(container, index, output.io(), &request, &memory_, flags),
                       {0, 1, 4, 6, 16});
                results_.release(request.subfileName);
                results_.release(request.subfilePath);
                if (flags == 0 && wanted == kCharsetNone) report_.plainOutputs.push_back(output.bytes());
            }
        }
    }

    void expect(const char* what, int32_t status, std::initializer_list<int32_t> allowed) {
        if (std::find(allowed.begin(), allowed.end(), status) == allowed.end()) {
            problem(std::string(what) + " gave status " + std::to_string(status));
        }
    }

    void problem(std::string text) { report_.problems.push_back(std::move(text)); }

    const Bytes& stream_;
    SessionReport& report_;
    HostMemory hostMemory_;
    HostMemory results_;
    ResultMemory memory_{};
    SharedIoFaults io_;
    std::unique_ptr<tnefhost::PosixHost> host_;
};

std::string commandOutput(const std::string& command) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return out;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    return pclose(pipe) == 0 ? out : std::string();
}

std::vector<std::string> symbolNames(const std::string& listing) {
    std::vector<std::string> names;
    std::istringstream lines(listing);
    for (std::string line; std::getline(lines, line);) names.push_back(line.substr(0, line.find('@')));
    return names;
}

}  // namespace

SessionReport runSession(const Bytes& stream, const SessionFaults& faults) {
    SessionReport report;
    Session(stream, faults, report).run();
    return report;
}

void releaseMetadata(HostMemory& results, MetadataResult& result, int32_t slots) {
    for (int32_t i = 0; result.items != nullptr && i < slots; ++i) {
        MetaElement* element = result.items[i];
        if (element == nullptr) continue;
        if (element->type != kElementNone && element->type != kElementBoolean && element->type != kElementInteger) {
            results.release(reinterpret_cast<void*>(element->value));
        }
        results.release(element->name);
        results.release(element);
    }
    results.release(result.items);
}

LibrarySymbols librarySymbols(const std::string& path) {
    const std::string nm = "nm -D --format=just-symbols '" + path + "' ";
    return {symbolNames(commandOutput(nm + "--defined-only")), symbolNames(commandOutput(nm + "--undefined-only"))};
}

std::vector<std::string> heapFunctions(const std::vector<std::string>& imported) {
    std::vector<std::string> heap;
    for (const std::string& name : imported) {
        bool cAllocator = name == "malloc" || name == "calloc" || name == "realloc" || name == "free";
        // operator new, new[], delete and delete[] in every overload.
        bool cxxAllocator = name.rfind("_Znw", 0) == 0 || name.rfind("_Zna", 0) == 0 ||
                            name.rfind("_Zdl", 0) == 0 || name.rfind("_Zda", 0) == 0;
        if (cAllocator || cxxAllocator) heap.push_back(name);
    }
    return heap;
}

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
