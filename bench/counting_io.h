// I/O objects for the benches: one that passes every call through to another
// object and counts what the module asked of it, and an output that keeps
// nothing but its length.
#pragma once

#include <cstdint>

#include "host/io_objects.h"

namespace tnefbench {

// What the module did with an object, beside the call counts HostIo keeps.
struct IoTally {
    uint64_t bytesRead = 0;
    uint64_t bytesWritten = 0;
    uint64_t largestRead = 0;   // largest count asked for in one read
    uint64_t largestWrite = 0;  // largest count handed to one write
};

// Counts the bytes read and written through it; the inner object does the
// work. The inner object's size is shown as this object's own once open.
class CountingIo : public tnefhost::HostIo {
public:
    explicit CountingIo(tnefhost::HostIo& inner) : inner_(inner.io()) {}
    const IoTally& tally() const { return tally_; }

protected:
    bool doOpen() override;
    int32_t doRead(void* buffer, uint32_t count) override;
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override;
    bool doClose() override;

private:
    IoObject* inner_;
    IoTally tally_;
};

// An output that throws the bytes away: it keeps a position and a length,
// so that seeking and telling behave as over a file.
class DiscardIo : public tnefhost::HostIo {
public:
    const IoTally& tally() const { return tally_; }
    int64_t length() const { return length_; }

protected:
    bool doOpen() override;
    int32_t doRead(void* buffer, uint32_t count) override;
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override;
    bool doClose() override;

private:
    int64_t position_ = 0;
    int64_t length_ = 0;
    IoTally tally_;
};

}  // namespace tnefbench
