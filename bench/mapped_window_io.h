// An input read through a window of the file mapped into memory and moved
// along as the reads go: no read calls at all, and only the window is ever
// resident. The extraction bench sets it against the tool's read-ahead input
// to show what the read half of a copy costs either way.
#pragma once

#include <cstdint>
#include <string>

#include "host/io_objects.h"

namespace tnefbench {

class MappedWindowIo : public tnefhost::HostIo {
public:
    MappedWindowIo(std::string path, size_t windowBytes)
        : path_(std::move(path)), windowBytes_(windowBytes) {}
    ~MappedWindowIo() override;

protected:
    bool doOpen() override;
    int32_t doRead(void* buffer, uint32_t count) override;
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override;
    bool doClose() override;

private:
    bool mapAt(int64_t position);
    void unmap();

    std::string path_;
    size_t windowBytes_;
    int fd_ = -1;
    uint8_t* window_ = nullptr;
    int64_t windowStart_ = 0;
    size_t windowLength_ = 0;
    int64_t position_ = 0;
};

}  // namespace tnefbench
