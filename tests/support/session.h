// One whole session of a host with the module over one stream: open with and
// without the root entry, container info, every subfile's info and metadata,
// every extraction in every form, close. A single fault can be injected
// anywhere in it; the session notes each status the module gives that the
// operation may not give, and whatever is left allocated at the end.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/tnef_writer.h"

namespace tneftest {

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

SessionReport runSession(const Bytes& stream, const SessionFaults& faults = {});

}  // namespace tneftest
