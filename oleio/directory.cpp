// The directory: a chain of sectors of 128-byte entries. Only the list of
// its sectors is held; entries are read when the walk reaches them.
#include <string.h>

#include "oleio/allocation.h"
#include "oleio/cfb_format.h"
#include "oleio/storage.h"
#include "reader/bytes.h"

namespace {

// Counts the directory's sectors, or fills `sectors` with them when it is
// given. A chain longer than the file has sectors must loop.
int32_t walkDirectoryChain(OleStorage* storage, uint32_t start, uint32_t* sectors,
                           uint32_t* count) {
    uint32_t sector = start;
    uint32_t n = 0;
    uint32_t bound = sectors != nullptr ? *count : storage->sectorCount;
    while (sector != kCfbEndOfChain) {
        if (sector >= storage->sectorCount || n >= bound) return 0;
        if (sectors != nullptr) sectors[n] = sector;
        ++n;
        if (cfbNextSector(storage, 0, sector, &sector) == 0) return 0;
    }
    if (n == 0 || (sectors != nullptr && n != bound)) return 0;
    *count = n;
    return 1;
}

void decodeEntry(const uint8_t* bytes, uint32_t version, CfbEntry* entry) {
    uint32_t nameBytes = tnefLe16(bytes + kCfbEntryNameLength);
    bool nameOk = nameBytes >= 4 && nameBytes <= kCfbEntryNameBytes && (nameBytes & 1) == 0;
    entry->nameUnits = nameOk ? nameBytes / 2 - 1 : 0;  // 0: the entry matches no name
    for (uint32_t i = 0; i < 32; ++i) entry->name[i] = static_cast<uint16_t>(tnefLe16(bytes + 2 * i));
    entry->type = bytes[kCfbEntryType];
    entry->left = tnefLe32(bytes + kCfbEntryLeft);
    entry->right = tnefLe32(bytes + kCfbEntryRight);
    entry->child = tnefLe32(bytes + kCfbEntryChild);
    entry->start = tnefLe32(bytes + kCfbEntryStart);
    // Version 3 files may leave anything in the high half of the size.
    entry->size = version == 3 ? tnefLe32(bytes + kCfbEntrySize64) : tnefLe64(bytes + kCfbEntrySize64);
}

// The root entry gives the directory tree's top and the mini stream.
int32_t readRoot(OleStorage* storage, const CfbHeader* header) {
    CfbEntry root;
    if (cfbReadEntry(storage, 0, &root) == 0 || root.type != kCfbTypeRoot) return 0;
    storage->rootChild = root.child;
    storage->miniStreamSize = root.size;
    uint32_t length = 0;
    if (cfbChainLength(root.size, storage->sectorShift, storage->sectorCount, &length) == 0)
        return 0;
    cfbChainInit(&storage->miniStream, root.start, length, 0);
    uint64_t miniSectors = (root.size + kCfbMiniSectorSize - 1) >> kCfbMiniSectorShift;
    storage->miniSectorCount = static_cast<uint32_t>(
        miniSectors > kCfbMaxRegularSector ? kCfbMaxRegularSector + 1ull : miniSectors);
    cfbChainInit(&storage->miniFat, header->miniFatStart, header->miniFatSectors, 0);
    return 1;
}

}  // namespace

int32_t cfbLoadDirectory(OleStorage* storage, const CfbHeader* header) {
    uint32_t count = 0;
    if (walkDirectoryChain(storage, header->directoryStart, nullptr, &count) == 0) return 0;
    storage->directorySectors =
        static_cast<uint32_t*>(cfbAllocArray(storage->allocator, count, 4));
    if (storage->directorySectors == nullptr) return 0;
    if (walkDirectoryChain(storage, header->directoryStart, storage->directorySectors, &count) == 0)
        return 0;

    uint64_t entries = static_cast<uint64_t>(count) * (storage->sectorSize / kCfbEntrySize);
    if (entries > 0x7FFFFFFFu) return 0;
    storage->entryCount = static_cast<uint32_t>(entries);
    storage->walkStack =
        static_cast<uint32_t*>(cfbAllocArray(storage->allocator, storage->entryCount, 4));
    if (storage->walkStack == nullptr) return 0;
    storage->walkSeen = static_cast<uint8_t*>(
        cfbAllocArray(storage->allocator, (storage->entryCount + 7) / 8, 1));
    if (storage->walkSeen == nullptr) return 0;
    return readRoot(storage, header);
}

int32_t cfbReadEntry(OleStorage* storage, uint32_t id, CfbEntry* entry) {
    if (id >= storage->entryCount) return 0;
    uint32_t perSector = storage->sectorSize / kCfbEntrySize;
    int64_t offset = cfbSectorOffset(storage, storage->directorySectors[id / perSector]) +
                     static_cast<int64_t>(id % perSector) * kCfbEntrySize;
    uint8_t bytes[kCfbEntrySize];
    if (cfbReadExact(storage, offset, bytes, kCfbEntrySize) == 0) return 0;
    decodeEntry(bytes, storage->version, entry);
    return 1;
}

int32_t cfbFindChild(OleStorage* storage, const char* name, CfbEntry* found) {
    // Every sibling of the root's tree is visited once: an entry is marked
    // when it is pushed, so links that point back or share a node neither
    // loop nor overflow the stack, which holds one place per entry. The
    // whole tree is searched rather than descended by name order, so that a
    // tree sorted by other case rules is still searched right.
    uint8_t* seen = storage->walkSeen;
    uint32_t* stack = storage->walkStack;
    memset(seen, 0, (storage->entryCount + 7) / 8);
    seen[0] = 1;  // the root is nobody's sibling
    uint32_t top = 0;
    auto push = [&](uint32_t id) {
        if (id >= storage->entryCount || (seen[id / 8] & (1u << (id % 8))) != 0) return;
        seen[id / 8] |= static_cast<uint8_t>(1u << (id % 8));
        stack[top++] = id;
    };
    push(storage->rootChild);
    while (top > 0) {
        CfbEntry entry;
        if (cfbReadEntry(storage, stack[--top], &entry) == 0) return 0;
        if (entry.type == kCfbTypeUnused) continue;  // its links mean nothing
        if (entry.type == kCfbTypeStream &&
            cfbNameMatches(name, entry.name, entry.nameUnits) != 0) {
            *found = entry;
            return 1;
        }
        push(entry.left);
        push(entry.right);
    }
    return 0;
}
