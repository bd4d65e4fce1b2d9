// Listing of subfiles.
#include "reader/operations.h"

int32_t tnefGetSubfileInfo(TnefContainer* container, int32_t index, SubfileInfo* info,
                           ResultMemory* memory) {
    if (container == nullptr || info == nullptr || !tnefResultMemoryUsable(memory)) {
        return kTnefBadArgument;
    }
    ContainerInfo count{};
    tnefGetContainerInfo(container, &count, memory);
    if (index < 0 || index >= count.subfileCount) return kTnefBadArgument;
    return kTnefNoObject;
}
