#include "bench/metered_host.h"

#include <algorithm>
#include <cstddef>

namespace tnefbench {

MeteredHost::MeteredHost(tnefhost::HostOptions options) : PosixHost(std::move(options)) {
    // The same memory as before, with the peak noted after every request.
    HostAllocator& table = context()->allocator;
    table.alloc = [](HostAllocator* self, size_t size) {
        MeteredHost* host = of(self);
        void* block = host->memory().allocate(size);
        host->note();
        return block;
    };
    table.calloc = [](HostAllocator* self, size_t count, size_t size) {
        MeteredHost* host = of(self);
        void* block = host->memory().allocateZeroed(count, size);
        host->note();
        return block;
    };
    table.realloc = [](HostAllocator* self, void* block, size_t size) {
        MeteredHost* host = of(self);
        void* grown = host->memory().reallocate(block, size);
        host->note();
        return grown;
    };
    table.free = [](HostAllocator* self, void* block) { of(self)->memory().release(block); };
    resetPeak();
}

MeteredHost* MeteredHost::of(HostAllocator* allocator) {
    auto* context = reinterpret_cast<HostContext*>(reinterpret_cast<char*>(allocator) -
                                                   offsetof(HostContext, allocator));
    // Only a MeteredHost installs these functions, so the context is one.
    return static_cast<MeteredHost*>(PosixHost::fromContext(context));
}

void MeteredHost::note() {
    peak_ = std::max(peak_, memory().liveBytes());
}

void MeteredHost::resetPeak() {
    peak_ = memory().liveBytes();
}

}  // namespace tnefbench
