// The OLE descriptor parsers on arbitrary stream bytes: each parser reads the
// same buffer, which is exactly as long as the input so that ASan sees any
// read past it.
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/fuzz_finding.h"
#include "host/posix_host.h"
#include "ole/descriptor_parsers.h"

namespace {

bool allowed(int32_t status) {
    return status == kTnefOk || status == kTnefNoName || status == kTnefNoMemory;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > INT32_MAX) return 0;
    tnefhost::HostMemory memory;
    memory.refuseAbove(tnefuzz::kLargestAllocation);
    tnefhost::HostOptions options;
    options.memory = &memory;
    tnefhost::PosixHost host(options);
    HostContext* context = host.context();
    HostAllocator* allocator = &context->allocator;
    auto count = static_cast<int32_t>(size);

    int32_t startOffset = 0;
    int32_t status = oleProcessCompObjStream(context, data, count, &startOffset);
    tnefuzz::failIf(!allowed(status), "CompObj status " + std::to_string(status));

    char* name = nullptr;
    int32_t payloadSize = 0;
    status = oleProcessOle10NativeStream(context, allocator, data, count, &startOffset, &payloadSize, &name);
    tnefuzz::failIf(!allowed(status), "Ole10Native status " + std::to_string(status));
    tnefuzz::failIf(name != nullptr && memory.blockSize(name) <= std::strlen(name), "unterminated name");

    // The first byte picks which marker the link path stands in front of.
    char* path = nullptr;
    char* secondPath = nullptr;
    int32_t hits = size > 0 ? 1 + data[0] % 3 : 1;
    status = oleProcessOleStream(context, allocator, data, count, hits, &path, &secondPath);
    tnefuzz::failIf(!allowed(status), "Ole status " + std::to_string(status));

    char* described = nullptr;
    status = oleProcessAttachDescStream(context, allocator, data, count, &described);
    tnefuzz::failIf(!allowed(status), "AttachDesc status " + std::to_string(status));

    std::vector<char> text(data, data + size);
    text.push_back('\0');
    status = oleProcessString(context, allocator, text.data(), &name);
    tnefuzz::failIf(!allowed(status), "string copy status " + std::to_string(status));
    oleCleanFileName(text.data(), count);
    for (char c : text) {
        tnefuzz::failIf(c == '&', "a cleaned name keeps '&'");
    }

    for (char* string : {name, path, secondPath, described}) memory.release(string);
    tnefuzz::failIf(memory.liveBlocks() != 0, "parsers leaked:\n" + memory.leakReport());
    return 0;
}
