// The host's allocators: a HostAllocator over malloc that counts what is
// live, and that tests can tell to refuse a given request or any request
// above a size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "reader/host.h"

namespace tnefhost {

class HostMemory {
public:
    HostMemory();
    HostMemory(const HostMemory&) = delete;
    HostMemory& operator=(const HostMemory&) = delete;

    void* allocate(size_t size);
    void* allocateZeroed(size_t count, size_t size);
    void* reallocate(void* block, size_t size);
    void release(void* block);

    // Refuse the n-th request from now on (1-based; 0 refuses none). Every
    // alloc, calloc and realloc is a request.
    void refuseRequest(uint64_t n);
    // Refuse every request above `size` bytes.
    void refuseAbove(size_t size);
    void clearFaults();

    uint64_t requests() const { return requests_; }
    size_t liveBlocks() const { return live_.size(); }
    size_t liveBytes() const { return liveBytes_; }
    // Size last granted for a live block; 0 for anything else.
    size_t blockSize(const void* block) const;
    // A line per live block, empty when nothing leaked.
    std::string leakReport() const;

    // A HostAllocator record that allocates from this memory, for hosts'
    // result memory and for tests.
    HostAllocator* allocator() { return &handle_.table; }
    static HostMemory* fromAllocator(HostAllocator* allocator);

    // Fills a HostAllocator record that lives elsewhere (inside a
    // HostContext, say): the record has no room for state, so `Owner` maps
    // the record's address back to its memory.
    template <HostMemory* (*Owner)(HostAllocator*)>
    static void fillTable(HostAllocator* table) {
        table->alloc = [](HostAllocator* self, size_t size) { return Owner(self)->allocate(size); };
        table->realloc = [](HostAllocator* self, void* block, size_t size) {
            return Owner(self)->reallocate(block, size);
        };
        table->calloc = [](HostAllocator* self, size_t count, size_t size) {
            return Owner(self)->allocateZeroed(count, size);
        };
        table->free = [](HostAllocator* self, void* block) { Owner(self)->release(block); };
    }

private:
    bool admit(size_t size);

    struct Handle {
        HostAllocator table;
        HostMemory* self;
    } handle_;
    std::unordered_map<void*, size_t> live_;
    size_t liveBytes_ = 0;
    uint64_t requests_ = 0;
    uint64_t refuseAt_ = 0;
    size_t refuseAbove_;
};

}  // namespace tnefhost
