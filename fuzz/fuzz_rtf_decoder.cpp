// The compressed RTF decoder on arbitrary stored values.
#include <cstdint>

#include "fuzz/fuzz_finding.h"
#include "host/memory.h"
#include "render/rtf_decompress.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > INT32_MAX) return 0;
    tnefhost::HostMemory memory;
    memory.refuseAbove(tnefuzz::kLargestAllocation);
    uint8_t* text = nullptr;
    uint32_t textSize = 0;
    int32_t status = tnefDecompressRtf(memory.allocator(), data, static_cast<int32_t>(size), &text, &textSize);
    tnefuzz::failIf(status != 0 && status != 2, "decoder status " + std::to_string(status));
    if (status == 0) {
        tnefuzz::failIf(text == nullptr && textSize != 0, "no text for a non-empty result");
        // Every byte handed out is read, so ASan sees a buffer shorter
        // than the size it comes with.
        uint8_t sum = 0;
        for (uint32_t i = 0; i < textSize; ++i) sum = static_cast<uint8_t>(sum + text[i]);
        asm volatile("" : : "r"(sum));
        tnefuzz::failIf(memory.blockSize(text) < textSize, "text shorter than its size");
        memory.release(text);
    }
    tnefuzz::failIf(memory.liveBlocks() != 0, "decoder leaked:\n" + memory.leakReport());
    return 0;
}
