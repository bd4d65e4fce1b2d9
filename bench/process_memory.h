// The process's resident memory as Linux reports it in /proc/self/status,
// with its high-water mark reset through /proc/self/clear_refs.
#pragma once

#include <cstdint>

namespace tnefbench {

// Resident set size now, in KiB; -1 when unknown.
int64_t residentKib();
// Most resident since the process started or since the last reset, in KiB;
// -1 when unknown.
int64_t residentPeakKib();
// Starts a new high-water mark from the current size. False when the kernel
// does not allow it.
bool resetResidentPeak();

}  // namespace tnefbench
