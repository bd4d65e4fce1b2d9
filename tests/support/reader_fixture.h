// Opening streams made by the writer through the real host, and checking
// that nothing is left allocated when they are closed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/io_objects.h"
#include "host/posix_host.h"
#include "reader/host.h"
#include "tests/support/tnef_writer.h"

namespace tneftest {

// One open container over an in-memory stream.
class OpenedStream {
public:
    explicit OpenedStream(const Bytes& stream, uint32_t flags = 0);
    // The host looks for the OLE storage library in the build folder.
    ~OpenedStream();

    // Fault injection must be set up before open: build with deferOpen, set
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

// What one extraction gave.
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

// The object at a place of the container's list, or null.
TnefObject* objectAt(TnefContainer* container, int32_t place);

// Where the real-world samples are: $TNEF_CORPUS, else the shared folder
// beside the repository; empty when neither exists.
std::string corpusDir();

Bytes readFile(const std::string& path);

// Whether `words` stand in `text` in this order.
bool inOrder(const std::string& text, const std::vector<std::string>& words);

}  // namespace tneftest
