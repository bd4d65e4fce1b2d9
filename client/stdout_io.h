// An output IoObject over standard output. The module seeks its output to
// the start before writing and to the end after; standard output may be a
// pipe, or a file that already holds other output, so positions here are
// counted, never applied to the descriptor.
#pragma once

#include <cstdint>

#include "host/io_objects.h"

namespace tnefclient {

class StdoutIo : public tnefhost::HostIo {
public:
    int64_t written() const { return written_; }
    bool failed() const { return failed_; }

protected:
    bool doOpen() override { return true; }
    int32_t doRead(void*, uint32_t) override { return 0; }
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override { return written_; }
    bool doClose() override { return true; }

private:
    int64_t written_ = 0;
    bool failed_ = false;
};

}  // namespace tnefclient
