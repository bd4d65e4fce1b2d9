// Walks along sector chains. A chain is only ever walked up to the length
// its owner's size gives, so a chain that loops or runs on can't hold a walk
// longer than that; every sector on the way must lie inside the file (or the
// mini stream).
#include "oleio/cfb_format.h"
#include "oleio/storage.h"

namespace {

uint32_t sectorLimit(const OleStorage* storage, const CfbChain* chain) {
    return chain->mini != 0 ? storage->miniSectorCount : storage->sectorCount;
}

}  // namespace

void cfbChainInit(CfbChain* chain, uint32_t start, uint32_t length, int32_t mini) {
    chain->start = start;
    chain->length = length;
    chain->index = 0;
    chain->sector = start;
    chain->mini = mini;
}

int32_t cfbChainLength(uint64_t size, uint32_t shift, uint32_t limit, uint32_t* length) {
    uint64_t units = (size >> shift) + ((size & ((1ull << shift) - 1)) != 0 ? 1 : 0);
    if (units > limit) return 0;
    *length = static_cast<uint32_t>(units);
    return 1;
}

int32_t cfbChainAt(OleStorage* storage, CfbChain* chain, uint32_t index, uint32_t* sector) {
    if (index >= chain->length) return 0;
    if (index < chain->index) {
        chain->index = 0;
        chain->sector = chain->start;
    }
    uint32_t limit = sectorLimit(storage, chain);
    if (chain->sector >= limit) return 0;
    while (chain->index < index) {
        uint32_t next = 0;
        if (cfbNextSector(storage, chain->mini, chain->sector, &next) == 0 || next >= limit)
            return 0;
        chain->sector = next;
        ++chain->index;
    }
    *sector = chain->sector;
    return 1;
}

int32_t cfbCheckChain(OleStorage* storage, const CfbChain* chain) {
    if (chain->length == 0) return 1;
    CfbChain walk = *chain;
    uint32_t last = 0;
    if (cfbChainAt(storage, &walk, chain->length - 1, &last) == 0) return 0;
    uint32_t next = 0;
    if (cfbNextSector(storage, chain->mini, last, &next) == 0) return 0;
    return next == kCfbEndOfChain ? 1 : 0;
}
