// Running streams made by the writer through the real host: one open
// container, one extraction, or a whole session with an injected fault; and
// checking that nothing is left allocated at the end.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/io_objects.h"
#include "host/posix_host.h"
#include "reader/host.h"
#include "tests/support/tnef_writer.h"

namespace tneftest {

// One open container over an in-memory stream. The host looks for the OLE
// storage library in the build folder.
class OpenedStream {
public:
    explicit OpenedStream(const Bytes& stream, uint32_t flags = 0);
    ~OpenedStream();

    // Fault injection must be set up before open: build with Deferred, set
    // the faults on host.memory() or input, then call open().
    struct Deferred {};
    OpenedStream(const Bytes& stream, uint32_t flags, Deferred);
    void open();

    // Closes the container; returns the leak report of the host's memory
    // ("" when nothing is left).
    std::string close();

    tnefhost::PosixHost host;
    tnefhost::MemoryIo input;
    tnefhost::HostMemory results;  // the ResultMemory allocator
    ResultMemory memory{};
    TnefContainer* container = nullptr;
    int32_t status = -1;

private:
    uint32_t flags_;
    bool closed_ = false;
};

struct Extraction {
    int32_t status = -1;
    Bytes bytes;             // what the output holds
    int64_t size = -1;       // the output's size field afterwards
    bool leftOpen = false;   // the output was still open on return
    uint64_t openCalls = 0;  // calls of the output's open
    uint32_t resultFlags = 0;
    std::string subfileName;  // from an OLE descriptor
    std::string subfilePath;
    uint8_t detectedFormat[16] = {};
    CharsetId outputCharsetAfter = -1;
};

// Extracts subfile `index` into a fresh memory output and releases what the
// request received.
Extraction extractSubfile(OpenedStream& stream, int32_t index, uint32_t flags = 0,
                          CharsetId wanted = 0);

// Releases a metadata answer's first `slots` elements (null places skipped),
// their names and pointer values, and the list.
void releaseMetadata(tnefhost::HostMemory& results, MetadataResult& result, int32_t slots);

TnefObject* objectAt(TnefContainer* container, int32_t place);

struct SessionFaults {
    uint64_t refuseHostRequest = 0;    // n-th request to the module's allocator
    uint64_t refuseResultRequest = 0;  // n-th request to the host's result memory
    uint64_t failIoCall = 0;           // n-th call of any I/O object: input, outputs, scratch
    // Refuse every request above this many bytes, of either memory, as a
    // host with a strict allocator would; 0 refuses none.
    size_t refuseAbove = 0;
};

struct SessionReport {
    uint64_t hostRequests = 0;
    uint64_t resultRequests = 0;
    uint64_t ioCalls = 0;
    uint64_t extractions = 0;
    // Output of each subfile extracted with flags 0 and no charset wanted.
    std::vector<Bytes> plainOutputs;
    std::vector<std::string> problems;
};

// One whole session over one stream: open with and without the root entry,
// container info, every subfile's info and metadata, every extraction in
// every form, close. The report notes each status the module gives that the
// operation may not give, and whatever is left allocated at the end.
SessionReport runSession(const Bytes& stream, const SessionFaults& faults = {});

// The dynamic symbols a built shared library defines and those it imports
// (without version suffixes), read with nm; both empty when nm fails.
struct LibrarySymbols {
    std::vector<std::string> defined;
    std::vector<std::string> imported;
};
LibrarySymbols librarySymbols(const std::string& path);
// The allocator functions among `imported`: malloc and its kin, operator new and delete.
std::vector<std::string> heapFunctions(const std::vector<std::string>& imported);

// Where the real-world samples are: $TNEF_CORPUS, else the shared folder
// beside the repository; empty when neither exists.
std::string corpusDir();

Bytes readFile(const std::string& path);

// Whether `words` stand in `text` in this order.
bool inOrder(const std::string& text, const std::vector<std::string>& words);

}  // namespace tneftest
