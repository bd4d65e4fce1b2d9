// Opening streams made by the writer through the real host, and checking
// that nothing is left allocated when they are closed.
#pragma once

#include <memory>
#include <string>

#include "host/io_objects.h"
#include "host/posix_host.h"
#include "reader/host.h"
#include "tests/support/tnef_writer.h"

namespace tneftest {

// One open container over an in-memory stream.
class OpenedStream {
public:
    explicit OpenedStream(const Bytes& stream, uint32_t flags = 0);
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

// The object at a place of the container's list, or null.
TnefObject* objectAt(TnefContainer* container, int32_t place);

// Where the real-world samples are: $TNEF_CORPUS, else the shared folder
// beside the repository; empty when neither exists.
std::string corpusDir();

Bytes readFile(const std::string& path);

}  // namespace tneftest
