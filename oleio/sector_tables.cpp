// The allocation tables: the FAT, whose sectors the header and the DIFAT
// chain list, and the mini FAT, whose sectors form a chain of the FAT. Each
// table keeps one sector in memory; nothing else of them is held.
#include "oleio/allocation.h"
#include "oleio/cfb_format.h"
#include "oleio/storage.h"
#include "reader/bytes.h"

namespace {

// Takes one listed FAT sector, which must lie inside the file.
int32_t takeFatSector(OleStorage* storage, uint32_t* taken, const uint8_t* entry) {
    uint32_t sector = tnefLe32(entry);
    if (sector >= storage->sectorCount) return 0;
    storage->fatSectors[(*taken)++] = sector;
    return 1;
}

// Brings table sector `sector` into `cache`.
int32_t loadTableSector(OleStorage* storage, CfbTableCache* cache, uint32_t sector) {
    if (cache->sector == sector) return 1;
    cache->sector = kCfbFreeSector;
    if (sector >= storage->sectorCount) return 0;
    if (cfbReadExact(storage, cfbSectorOffset(storage, sector), cache->bytes,
                     storage->sectorSize) == 0)
        return 0;
    cache->sector = sector;
    return 1;
}

}  // namespace

int32_t cfbLoadFatSectors(OleStorage* storage, const uint8_t* headerBytes,
                          const CfbHeader* header) {
    uint32_t wanted = header->fatSectors;
    storage->fatSectors =
        static_cast<uint32_t*>(cfbAllocArray(storage->allocator, wanted, 4));
    if (storage->fatSectors == nullptr) return 0;
    storage->fatSectorCount = wanted;

    uint32_t taken = 0;
    for (uint32_t i = 0; i < kCfbHeaderDifatEntries && taken < wanted; ++i) {
        if (takeFatSector(storage, &taken, headerBytes + kCfbHeaderDifat + 4 * i) == 0) return 0;
    }

    // The rest comes from the DIFAT chain; each of its sectors ends with the
    // number of the next. The header's count bounds the walk, so a chain
    // that loops runs out of steps.
    uint8_t* scratch = storage->fatCache.bytes;
    uint32_t perSector = storage->sectorSize / 4 - 1;
    uint32_t sector = header->difatStart;
    uint32_t steps = 0;
    for (; taken < wanted; ++steps) {
        if (steps >= header->difatSectors || sector >= storage->sectorCount) return 0;
        storage->fatCache.sector = kCfbFreeSector;  // the cache is borrowed
        if (cfbReadExact(storage, cfbSectorOffset(storage, sector), scratch,
                         storage->sectorSize) == 0)
            return 0;
        for (uint32_t i = 0; i < perSector && taken < wanted; ++i) {
            if (takeFatSector(storage, &taken, scratch + 4 * i) == 0) return 0;
        }
        sector = tnefLe32(scratch + 4 * perSector);
    }
    // The last DIFAT sector must end the chain; one that links on, back to
    // itself say, is no DIFAT the header's count describes.
    if (steps != 0 && sector != kCfbEndOfChain && sector != kCfbFreeSector) return 0;
    return 1;
}

int32_t cfbNextSector(OleStorage* storage, int32_t mini, uint32_t sector, uint32_t* next) {
    uint32_t entriesShift = storage->sectorShift - 2;
    uint32_t tableIndex = sector >> entriesShift;
    uint32_t tableSector = 0;
    CfbTableCache* cache = nullptr;
    if (mini == 0) {
        if (tableIndex >= storage->fatSectorCount) return 0;
        tableSector = storage->fatSectors[tableIndex];
        cache = &storage->fatCache;
    } else {
        if (cfbChainAt(storage, &storage->miniFat, tableIndex, &tableSector) == 0) return 0;
        cache = &storage->miniFatCache;
    }
    if (loadTableSector(storage, cache, tableSector) == 0) return 0;
    uint32_t slot = sector & ((1u << entriesShift) - 1);
    *next = tnefLe32(cache->bytes + 4 * slot);
    return 1;
}
