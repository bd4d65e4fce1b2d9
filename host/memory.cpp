#include "host/memory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tnefhost {

namespace {

// No real request comes near this; anything above is a hostile or poisoned
// size and is refused before it reaches malloc. Where size_t has 32 bits
// (WebAssembly), half the address space.
constexpr uint64_t kLargestReal = uint64_t{1} << 40;
constexpr size_t kLargestRequest =
    kLargestReal < SIZE_MAX ? static_cast<size_t>(kLargestReal) : SIZE_MAX / 2;

}  // namespace

HostMemory::HostMemory() : refuseAbove_(kLargestRequest) {
    handle_.self = this;
    fillTable<&HostMemory::fromAllocator>(&handle_.table);
}

HostMemory* HostMemory::fromAllocator(HostAllocator* allocator) {
    return reinterpret_cast<Handle*>(allocator)->self;
}

bool HostMemory::admit(size_t size) {
    ++requests_;
    if (refuseAt_ != 0 && requests_ == refuseAt_) return false;
    return size <= refuseAbove_;
}

void* HostMemory::allocate(size_t size) {
    if (!admit(size)) return nullptr;
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block != nullptr) {
        live_[block] = size;
        liveBytes_ += size;
    }
    return block;
}

void* HostMemory::allocateZeroed(size_t count, size_t size) {
    if (size != 0 && count > kLargestRequest / size) {
        ++requests_;
        return nullptr;
    }
    void* block = allocate(count * size);
    if (block != nullptr) std::memset(block, 0, count * size);
    return block;
}

void* HostMemory::reallocate(void* block, size_t size) {
    if (block == nullptr) return allocate(size);
    if (!admit(size)) return nullptr;
    auto it = live_.find(block);
    size_t old = it == live_.end() ? 0 : it->second;
    void* grown = std::realloc(block, size == 0 ? 1 : size);
    if (grown == nullptr) return nullptr;
    if (it != live_.end()) live_.erase(it);
    liveBytes_ = liveBytes_ - old + size;
    live_[grown] = size;
    return grown;
}

void HostMemory::release(void* block) {
    if (block == nullptr) return;
    auto it = live_.find(block);
    if (it != live_.end()) {
        liveBytes_ -= it->second;
        live_.erase(it);
    }
    std::free(block);
}

void HostMemory::refuseRequest(uint64_t n) {
    refuseAt_ = n == 0 ? 0 : requests_ + n;
}

void HostMemory::refuseAbove(size_t size) {
    refuseAbove_ = size;
}

void HostMemory::clearFaults() {
    refuseAt_ = 0;
    refuseAbove_ = kLargestRequest;
}

size_t HostMemory::blockSize(const void* block) const {
    auto it = live_.find(const_cast<void*>(block));
    return it == live_.end() ? 0 : it->second;
}

std::string HostMemory::leakReport() const {
    std::string report;
    for (const auto& [block, size] : live_) {
        report += "leaked " + std::to_string(size) + " bytes\n";
    }
    return report;
}

}  // namespace tnefhost
