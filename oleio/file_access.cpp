// Positioned reads of the compound file through the caller's IoObject.
#include "oleio/storage.h"

uint32_t cfbReadAt(OleStorage* storage, int64_t offset, void* buffer, uint32_t count) {
    IoObject* io = storage->io;
    if (io->seek == nullptr || io->read == nullptr || offset < 0) return 0;
    if (io->seek(io, offset, kSeekSet) == 0) return 0;
    uint8_t* out = static_cast<uint8_t*>(buffer);
    uint32_t done = 0;
    while (done < count) {
        int32_t got = io->read(io, out + done, count - done);
        // A count beyond the request would be a broken IoObject; it ends the read.
        if (got <= 0 || static_cast<uint32_t>(got) > count - done) break;
        done += static_cast<uint32_t>(got);
    }
    return done;
}

int32_t cfbReadExact(OleStorage* storage, int64_t offset, void* buffer, uint32_t count) {
    return cfbReadAt(storage, offset, buffer, count) == count ? 1 : 0;
}

int64_t cfbSectorOffset(const OleStorage* storage, uint32_t sector) {
    // The header takes the place of sector -1.
    return (static_cast<int64_t>(sector) + 1) << storage->sectorShift;
}

int64_t cfbFileSize(IoObject* io) {
    if (io->seek != nullptr && io->tell != nullptr && io->seek(io, 0, kSeekEnd) != 0) {
        int64_t end = io->tell(io);
        if (end >= 0) return end;
    }
    return io->size > 0 ? io->size : -1;
}
