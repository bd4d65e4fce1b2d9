// Opening and closing a compound file, and choosing its current stream.
#include <string.h>

#include "oleio/allocation.h"
#include "oleio/cfb_format.h"
#include "oleio/storage.h"

namespace {

OleStorage* asStorage(void* handle) {
    return static_cast<OleStorage*>(handle);
}

int32_t allocatorUsable(const HostAllocator* allocator) {
    return allocator != nullptr && allocator->alloc != nullptr && allocator->free != nullptr;
}

int32_t allocateTableCache(OleStorage* storage, CfbTableCache* cache) {
    cache->sector = kCfbFreeSector;
    cache->bytes = static_cast<uint8_t*>(
        tnefAlloc(storage->allocator, static_cast<int32_t>(storage->sectorSize)));
    return cache->bytes != nullptr ? 1 : 0;
}

// Everything past the allocation of the record itself.
int32_t loadStorage(OleStorage* storage) {
    storage->fileSize = cfbFileSize(storage->io);
    if (storage->fileSize < kCfbHeaderSize) return 0;
    uint8_t headerBytes[kCfbHeaderSize];
    if (cfbReadExact(storage, 0, headerBytes, kCfbHeaderSize) == 0) return 0;
    CfbHeader header;
    if (cfbParseHeader(storage, headerBytes, &header) == 0) return 0;
    storage->version = header.version;
    if (allocateTableCache(storage, &storage->fatCache) == 0 ||
        allocateTableCache(storage, &storage->miniFatCache) == 0)
        return 0;
    if (cfbLoadFatSectors(storage, headerBytes, &header) == 0) return 0;
    return cfbLoadDirectory(storage, &header);
}

}  // namespace

void* cfbOpenStorage(IoObject* io, HostAllocator* allocator) {
    if (io == nullptr || allocatorUsable(allocator) == 0) return nullptr;
    OleStorage* storage =
        static_cast<OleStorage*>(tnefAlloc(allocator, static_cast<int32_t>(sizeof(OleStorage))));
    if (storage == nullptr) return nullptr;
    memset(storage, 0, sizeof *storage);
    storage->io = io;
    storage->allocator = allocator;
    if (loadStorage(storage) == 0) {
        cfbCloseStorage(storage);
        return nullptr;
    }
    return storage;
}

void cfbCloseStorage(void* handle) {
    OleStorage* storage = asStorage(handle);
    if (storage == nullptr) return;
    cfbCloseStream(storage);
    HostAllocator* allocator = storage->allocator;
    tnefFree(allocator, storage->fatSectors);
    tnefFree(allocator, storage->fatCache.bytes);
    tnefFree(allocator, storage->miniFatCache.bytes);
    tnefFree(allocator, storage->directorySectors);
    tnefFree(allocator, storage->walkStack);
    tnefFree(allocator, storage->walkSeen);
    tnefFree(allocator, storage);
}

int32_t cfbFindStream(void* handle, const char* name) {
    OleStorage* storage = asStorage(handle);
    if (storage == nullptr) return 0;
    // A failed search leaves no current stream behind.
    storage->hasCurrent = 0;
    if (name == nullptr || cfbFindChild(storage, name, &storage->current) == 0) return 0;
    storage->hasCurrent = 1;
    return 1;
}

void cfbResetStream(void* handle, int32_t) {
    OleStorage* storage = asStorage(handle);
    if (storage != nullptr) storage->hasCurrent = 0;
}
