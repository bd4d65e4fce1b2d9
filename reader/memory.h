// Shorthands for the host's allocators: the module has no heap of its own.
#pragma once

#include "reader/host.h"
#include "reader/sizes.h"

inline HostAllocator* tnefHostAllocator(TnefContainer* container) {
    return &container->host->allocator;
}

// Allocation of a signed 32-bit size, as worked out with the saturating
// arithmetic: a negative or poisoned size is refused by the allocator.
inline void* tnefAlloc(HostAllocator* allocator, int32_t size) {
    return allocator->alloc(allocator, tnefAllocSize(size));
}

inline void tnefFree(HostAllocator* allocator, void* block) {
    if (block != nullptr) allocator->free(allocator, block);
}
