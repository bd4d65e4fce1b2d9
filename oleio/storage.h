// The state of one open compound file and of the stream handed out from it,
// and the inner functions that the entry points are built from.
#pragma once

#include <stdint.h>

#include "reader/host.h"

// A walk along one sector chain. `index` and `sector` remember where the last
// lookup ended, so that reading on from there costs one step per sector.
struct CfbChain {
    uint32_t start;   // first sector
    uint32_t length;  // sectors the chain must hold
    uint32_t index;   // place of `sector` in the chain
    uint32_t sector;
    int32_t mini;     // links live in the mini FAT rather than in the FAT
};

// One sector of an allocation table held in memory.
struct CfbTableCache {
    uint8_t* bytes;    // one sector
    uint32_t sector;   // table sector held, kCfbFreeSector when none
};

// The fields of a directory entry that the reader uses.
struct CfbEntry {
    uint16_t name[32];
    uint32_t nameUnits;  // UTF-16 units before the terminator
    uint8_t type;
    uint32_t left;
    uint32_t right;
    uint32_t child;
    uint32_t start;
    uint64_t size;
};

// The header fields that locate the tables.
struct CfbHeader {
    uint32_t version;
    uint32_t fatSectors;
    uint32_t directoryStart;
    uint32_t miniFatStart;
    uint32_t miniFatSectors;
    uint32_t difatStart;
    uint32_t difatSectors;
};

struct OleStreamIo;

struct OleStorage {
    IoObject* io;  // the caller's; read through, never closed
    HostAllocator* allocator;
    int64_t fileSize;
    uint32_t version;  // 3 or 4
    uint32_t sectorShift;
    uint32_t sectorSize;
    uint32_t sectorCount;  // sectors that begin inside the file

    // Where each sector of the FAT lies, gathered from the header and the
    // DIFAT chain.
    uint32_t* fatSectors;
    uint32_t fatSectorCount;
    CfbTableCache fatCache;

    CfbChain miniFat;  // the mini FAT's own sectors
    CfbTableCache miniFatCache;
    CfbChain miniStream;  // the sectors of the mini stream
    uint64_t miniStreamSize;
    uint32_t miniSectorCount;
    int32_t miniStreamChecked;

    // The directory: its sectors in chain order, and scratch space for one
    // walk of the root's children.
    uint32_t* directorySectors;
    uint32_t entryCount;
    uint32_t* walkStack;
    uint8_t* walkSeen;
    uint32_t rootChild;

    int32_t hasCurrent;
    CfbEntry current;
    OleStreamIo* stream;  // handed out by openStream, until closeStream
};

// The IoObject handed out for a stream; `io` comes first so that the
// record's address is the IoObject's.
struct OleStreamIo {
    IoObject io;
    OleStorage* storage;
    uint64_t size;
    int64_t position;
    CfbChain chain;
};

// --- file access (file_access.cpp) ---------------------------------------------
// Reads up to `count` bytes at `offset` of the file, as many reads as it
// takes; returns the bytes read, fewer at the end or on a failure.
uint32_t cfbReadAt(OleStorage* storage, int64_t offset, void* buffer, uint32_t count);
// 1 when exactly `count` bytes were read.
int32_t cfbReadExact(OleStorage* storage, int64_t offset, void* buffer, uint32_t count);
// Byte offset of a regular sector.
int64_t cfbSectorOffset(const OleStorage* storage, uint32_t sector);
// Length of the file: seek to its end and ask; the IoObject's `size` when
// that can't be done. -1 when neither gives a length.
int64_t cfbFileSize(IoObject* io);

// --- header (header.cpp) ---------------------------------------------------------
// Checks the 512 header bytes against the file's length and sets the
// storage's sector geometry. 1 when the header is usable.
int32_t cfbParseHeader(OleStorage* storage, const uint8_t* bytes, CfbHeader* header);

// --- allocation tables (sector_tables.cpp) ---------------------------------------
// Gathers the FAT's sector numbers from the header and the DIFAT chain.
int32_t cfbLoadFatSectors(OleStorage* storage, const uint8_t* headerBytes,
                          const CfbHeader* header);
// The sector that follows `sector` in the FAT, or in the mini FAT when
// `mini` is set. 0 when the table can't say.
int32_t cfbNextSector(OleStorage* storage, int32_t mini, uint32_t sector, uint32_t* next);

// --- chains (chains.cpp) -----------------------------------------------------------
void cfbChainInit(CfbChain* chain, uint32_t start, uint32_t length, int32_t mini);
// Sectors a stream of `size` bytes takes in units of 2^shift bytes; 0 when
// more than `limit`, so that such a stream can't be walked.
int32_t cfbChainLength(uint64_t size, uint32_t shift, uint32_t limit, uint32_t* length);
// The sector at place `index` of the chain. 0 when the place lies beyond the
// chain's length or a link on the way is broken.
int32_t cfbChainAt(OleStorage* storage, CfbChain* chain, uint32_t index, uint32_t* sector);
// 1 when the chain holds exactly its length of valid sectors and then ends.
int32_t cfbCheckChain(OleStorage* storage, const CfbChain* chain);

// --- directory (directory.cpp) -----------------------------------------------------
int32_t cfbLoadDirectory(OleStorage* storage, const CfbHeader* header);
int32_t cfbReadEntry(OleStorage* storage, uint32_t id, CfbEntry* entry);
// Walks the root's children for a stream named `name`.
int32_t cfbFindChild(OleStorage* storage, const char* name, CfbEntry* found);

// --- names (name_match.cpp) ----------------------------------------------------------
// 1 when the UTF-8 text `name` names the UTF-16 `units`.
int32_t cfbNameMatches(const char* name, const uint16_t* units, uint32_t unitCount);

// --- streams (stream_io.cpp) ---------------------------------------------------------
IoObject* cfbOpenStream(void* storage);
void cfbCloseStream(void* storage);

// --- storage (storage.cpp) -----------------------------------------------------------
void* cfbOpenStorage(IoObject* io, HostAllocator* allocator);
void cfbCloseStorage(void* storage);
int32_t cfbFindStream(void* storage, const char* name);
void cfbResetStream(void* storage, int32_t unused);
