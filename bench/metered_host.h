// A POSIX host whose allocator also remembers the most it ever had live, so
// that a bench can show what an operation needed at its peak.
#pragma once

#include <cstddef>

#include "host/posix_host.h"

namespace tnefbench {

class MeteredHost : public tnefhost::PosixHost {
public:
    explicit MeteredHost(tnefhost::HostOptions options = {});

    // Most bytes live at once in the context's allocator since the last reset.
    size_t peakBytes() const { return peak_; }
    // Starts a new peak from what is live now.
    void resetPeak();

private:
    static MeteredHost* of(HostAllocator* allocator);
    void note();

    size_t peak_ = 0;
};

}  // namespace tnefbench
