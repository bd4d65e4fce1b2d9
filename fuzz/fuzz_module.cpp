// The whole module on arbitrary bytes: open with and without the root entry,
// container info, every subfile's info and metadata (default and by tag),
// every extraction with each body preference and several wanted charsets,
// close. A status an operation may not give, or memory left allocated, is a
// finding.
#include <dlfcn.h>

#include <cstdint>

#include "fuzz/fuzz_finding.h"
#include "tests/support/session.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // Each container loads and unloads the OLE library; libFuzzer's coverage
    // counters inside it must stay mapped, so the library stays loaded.
    dlopen(TNEF_BUILD_DIR "/libzdolefio.so", RTLD_NOW | RTLD_NODELETE);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tneftest::SessionFaults faults;
    faults.refuseAbove = tnefuzz::kLargestAllocation;
    tneftest::SessionReport report = tneftest::runSession(tneftest::Bytes(data, data + size), faults);
    std::string problems;
    for (const std::string& line : report.problems) problems += line + "\n";
    tnefuzz::failIf(!problems.empty(), problems);
    return 0;
}
