// Allocations of the OLE library, all from the caller's HostAllocator, with
// sizes worked out by the saturating helpers.
#pragma once

#include "reader/memory.h"

// `count` elements of `elementSize` bytes; a count beyond the signed 32-bit
// range poisons the size so that the allocator refuses it.
inline void* cfbAllocArray(HostAllocator* allocator, uint32_t count, int32_t elementSize) {
    int32_t n = count > 0x7FFFFFFFu ? kTnefSizePoison : static_cast<int32_t>(count);
    return tnefAlloc(allocator, tnefSizeMul(n, elementSize));
}
