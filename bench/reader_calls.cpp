#include "bench/reader_calls.h"

#include "reader/operations.h"

namespace tnefbench {

namespace {

bool valueIsPointer(int32_t type) {
    switch (type) {
        case kElementBinary:
        case kElementText8:
        case kElementText16:
        case kElementInt64:
        case kElementTime:
        case kElementDouble:
        case kElementFloat: return true;
        default: return false;
    }
}

void releaseElements(MetadataResult& result, tnefhost::HostMemory& results) {
    if (result.items == nullptr) return;
    for (int32_t i = 0; i < result.count; ++i) {
        MetaElement* item = result.items[i];
        if (item == nullptr) continue;
        results.release(item->name);
        if (valueIsPointer(item->type)) {
            results.release(reinterpret_cast<void*>(static_cast<uintptr_t>(item->value)));
        }
        results.release(item);
    }
    results.release(result.items);
}

}  // namespace

int32_t listContainer(TnefContainer* container, tnefhost::HostMemory& results) {
    ResultMemory memory{&results, results.allocator()};
    ContainerInfo info{};
    if (tnefGetContainerInfo(container, &info, &memory) != kTnefOk) return -1;
    int32_t message = -1;
    for (int32_t i = 0; i < info.subfileCount; ++i) {
        SubfileInfo subfile{};
        if (tnefGetSubfileInfo(container, i, &subfile, &memory) != kTnefOk) return -1;
        if (message < 0 && subfile.type == kSubfileMessage) message = i;
        results.release(subfile.name);
        results.release(subfile.children);
    }
    if (message >= 0) {
        MetadataResult summary{};
        int32_t status = tnefGetSubfileMetadata(container, message, 0, nullptr, &summary, &memory);
        releaseElements(summary, results);
        if (status != kTnefOk) return -1;
    }
    return info.subfileCount;
}

int32_t extractSubfileTo(TnefContainer* container, int32_t index, IoObject* output,
                         tnefhost::HostMemory& results) {
    ResultMemory memory{&results, results.allocator()};
    ExtractRequest request{};
    int32_t status = tnefExtractSubfile(container, index, output, &request, &memory, 0);
    results.release(request.subfileName);
    results.release(request.subfilePath);
    return status;
}

}  // namespace tnefbench
