// The whole module on arbitrary bytes: open with and without the root entry,
// container info, every subfile's info and metadata (default and by tag),
// every extraction with each body preference and several wanted charsets,
// close, with or without one injected fault. A status an operation may not
// give, or memory left allocated, is a finding.
#include <dlfcn.h>

#include <cstdint>

#include "fuzz/fuzz_finding.h"
#include "tests/support/reader_fixture.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // Each container loads and unloads the OLE library; libFuzzer's coverage
    // counters inside it must stay mapped, so the library stays loaded.
    dlopen(TNEF_BUILD_DIR "/libzdolefio.so", RTLD_NOW | RTLD_NODELETE);
    return 0;
}

namespace {

// Three inputs in four also meet one fault: a refused allocation of either
// memory or a failed I/O call, at a point taken from the input's bytes, so
// that damaged streams meet the failure paths too and a finding replays.
tneftest::SessionFaults faultsFor(const uint8_t* data, size_t size) {
    uint32_t sum = 0;
    for (size_t i = 0; i < size; ++i) sum = sum * 31 + data[i];
    tneftest::SessionFaults faults;
    faults.refuseAbove = tnefuzz::kLargestAllocation;
    uint64_t point = 1 + (sum >> 2) % 400;
    switch (sum & 3) {
        case 0: faults.refuseHostRequest = point; break;
        case 1: faults.refuseResultRequest = point; break;
        case 2: faults.failIoCall = point; break;
        default: break;
    }
    return faults;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tneftest::SessionFaults faults = faultsFor(data, size);
    tneftest::SessionReport report = tneftest::runSession(tneftest::Bytes(data, data + size), faults);
    std::string problems;
    for (const std::string& line : report.problems) problems += line + "\n";
    tnefuzz::failIf(!problems.empty(), problems);
    return 0;
}
