// What every fuzz target does with a finding of its own (a leak the host's
// allocator reports, a status the operation may not give): print it and
// abort, so that libFuzzer keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace tnefuzz {

inline void failIf(bool failed, const std::string& what) {
    if (!failed) return;
    std::fprintf(stderr, "finding: %s\n", what.c_str());
    std::abort();
}

// Allocations above this are refused, as a host with a strict allocator
// would: a hostile size may ask for up to 2 GiB, which the module must
// survive being refused, and which libFuzzer would otherwise report as an
// out-of-memory.
constexpr size_t kLargestAllocation = size_t{64} << 20;

}  // namespace tnefuzz
