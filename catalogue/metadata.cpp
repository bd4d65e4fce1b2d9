// Metadata queries.
#include "reader/operations.h"

int32_t tnefGetSubfileMetadata(TnefContainer* container, int32_t index, int32_t requestCount,
                               MetadataRequest** requests, MetadataResult* result,
                               ResultMemory* memory) {
    if (container == nullptr || memory == nullptr || memory->allocator == nullptr ||
        result == nullptr || requestCount < 0) {
        return kTnefBadArgument;
    }
    if (requestCount == 0 && requests != nullptr) return kTnefOk;
    if (requestCount > 0 && requests == nullptr) return kTnefBadArgument;
    if ((container->openFlags & kTnefOpenRootEntry) != 0) {
        if (index == 0) return kTnefOk;
        index -= 1;
    }
    if (index < 0 || index >= container->objectCount) return kTnefBadArgument;
    return kTnefNoObject;
}
