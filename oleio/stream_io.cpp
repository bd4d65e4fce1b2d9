// The IoObject handed out for the current stream. It reads the stream's
// sectors straight into the caller's buffer, through the chain walk, so that
// nothing of the stream is held; consecutive sectors are read in one go.
#include <string.h>

#include "oleio/allocation.h"
#include "oleio/cfb_format.h"
#include "oleio/storage.h"

namespace {

OleStreamIo* asStream(IoObject* io) {
    return reinterpret_cast<OleStreamIo*>(io);
}

uint32_t smaller(uint64_t a, uint32_t b) {
    return a < b ? static_cast<uint32_t>(a) : b;
}

// Reads from the current position up to `want` bytes of one regular sector
// and the sectors that follow it in the file.
uint32_t readRegularRun(OleStreamIo* stream, uint8_t* out, uint32_t want) {
    OleStorage* storage = stream->storage;
    uint64_t position = static_cast<uint64_t>(stream->position);
    uint32_t first = 0;
    if (cfbChainAt(storage, &stream->chain, static_cast<uint32_t>(position >> storage->sectorShift),
                   &first) == 0)
        return 0;
    uint32_t within = static_cast<uint32_t>(position & (storage->sectorSize - 1));
    uint32_t run = storage->sectorSize - within;
    uint32_t last = first;
    while (run < want && stream->chain.index + 1 < stream->chain.length) {
        uint32_t next = 0;
        if (cfbChainAt(storage, &stream->chain, stream->chain.index + 1, &next) == 0 ||
            next != last + 1)
            break;
        last = next;
        run += storage->sectorSize;
    }
    return cfbReadAt(storage, cfbSectorOffset(storage, first) + within, out, smaller(run, want));
}

// Reads from the current position up to `want` bytes of one mini sector,
// found through the mini stream's own chain.
uint32_t readMiniRun(OleStreamIo* stream, uint8_t* out, uint32_t want) {
    OleStorage* storage = stream->storage;
    uint64_t position = static_cast<uint64_t>(stream->position);
    uint32_t miniSector = 0;
    if (cfbChainAt(storage, &stream->chain,
                   static_cast<uint32_t>(position >> kCfbMiniSectorShift), &miniSector) == 0)
        return 0;
    uint32_t within = static_cast<uint32_t>(position & (kCfbMiniSectorSize - 1));
    uint64_t inMiniStream = (static_cast<uint64_t>(miniSector) << kCfbMiniSectorShift) + within;
    uint32_t sector = 0;
    if (cfbChainAt(storage, &storage->miniStream,
                   static_cast<uint32_t>(inMiniStream >> storage->sectorShift), &sector) == 0)
        return 0;
    int64_t offset = cfbSectorOffset(storage, sector) +
                     static_cast<int64_t>(inMiniStream & (storage->sectorSize - 1));
    return cfbReadAt(storage, offset, out, smaller(kCfbMiniSectorSize - within, want));
}

int32_t streamOpen(IoObject* io) {
    asStream(io)->position = 0;
    return 1;
}

int32_t streamRead(IoObject* io, void* buffer, uint32_t count) {
    OleStreamIo* stream = asStream(io);
    if (buffer == nullptr || stream->position < 0 ||
        static_cast<uint64_t>(stream->position) >= stream->size)
        return 0;
    uint32_t want = smaller(stream->size - static_cast<uint64_t>(stream->position), count);
    if (want > 0x7FFFFFFFu) want = 0x7FFFFFFFu;  // the count must fit the result
    uint8_t* out = static_cast<uint8_t*>(buffer);
    uint32_t done = 0;
    while (done < want) {
        uint32_t got = stream->chain.mini != 0 ? readMiniRun(stream, out + done, want - done)
                                               : readRegularRun(stream, out + done, want - done);
        if (got == 0) break;  // a broken chain or a failed read: a short count
        done += got;
        stream->position += got;
    }
    return static_cast<int32_t>(done);
}

int32_t streamSeek(IoObject* io, int64_t offset, int32_t origin) {
    OleStreamIo* stream = asStream(io);
    int64_t base = 0;
    if (origin == kSeekSet) {
        base = 0;
    } else if (origin == 1) {
        base = stream->position;
    } else if (origin == kSeekEnd) {
        base = static_cast<int64_t>(stream->size);
    } else {
        return 0;
    }
    if (offset > 0 && base > INT64_MAX - offset) return 0;
    int64_t target = base + offset;
    if (target < 0) return 0;
    // A place past the end is allowed; reading there gives nothing.
    stream->position = target;
    return 1;
}

int64_t streamTell(IoObject* io) {
    return asStream(io)->position;
}

int32_t streamClose(IoObject*) {
    return 1;
}

// Sets up the chain of the current stream and checks all of it, so that a
// chain that loops, leaves the file or disagrees with the size is refused
// before any byte is handed out.
int32_t prepareChain(OleStorage* storage, const CfbEntry* entry, CfbChain* chain) {
    uint32_t length = 0;
    if (entry->size < kCfbMiniStreamCutoff) {
        // The mini FAT and the mini stream are checked whole once, at the
        // first mini stream opened.
        if (storage->miniStreamChecked == 0) {
            if (cfbCheckChain(storage, &storage->miniFat) == 0 ||
                cfbCheckChain(storage, &storage->miniStream) == 0)
                return 0;
            storage->miniStreamChecked = 1;
        }
        if (cfbChainLength(entry->size, kCfbMiniSectorShift, storage->miniSectorCount, &length) == 0)
            return 0;
        cfbChainInit(chain, entry->start, length, 1);
    } else {
        if (cfbChainLength(entry->size, storage->sectorShift, storage->sectorCount, &length) == 0)
            return 0;
        cfbChainInit(chain, entry->start, length, 0);
    }
    return cfbCheckChain(storage, chain);
}

}  // namespace

IoObject* cfbOpenStream(void* handle) {
    OleStorage* storage = static_cast<OleStorage*>(handle);
    if (storage == nullptr || storage->hasCurrent == 0) return nullptr;
    CfbChain chain;
    if (prepareChain(storage, &storage->current, &chain) == 0) return nullptr;
    cfbCloseStream(storage);  // one stream at a time
    OleStreamIo* stream = static_cast<OleStreamIo*>(
        tnefAlloc(storage->allocator, static_cast<int32_t>(sizeof(OleStreamIo))));
    if (stream == nullptr) return nullptr;
    memset(stream, 0, sizeof *stream);
    stream->storage = storage;
    stream->size = storage->current.size;
    stream->chain = chain;
    stream->io.size = static_cast<int64_t>(stream->size);
    stream->io.open = streamOpen;
    stream->io.read = streamRead;
    stream->io.seek = streamSeek;
    stream->io.tell = streamTell;
    stream->io.close = streamClose;
    // No write: the stream is read-only. No destroy: closeStream releases it.
    storage->stream = stream;
    return &stream->io;
}

void cfbCloseStream(void* handle) {
    OleStorage* storage = static_cast<OleStorage*>(handle);
    if (storage == nullptr || storage->stream == nullptr) return;
    tnefFree(storage->allocator, storage->stream);
    storage->stream = nullptr;
}
