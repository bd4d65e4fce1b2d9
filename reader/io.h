// Calls into a host IoObject that tolerate empty slots: a missing operation
// behaves like one that failed, and a negative read counts as nothing read.
#pragma once

#include "reader/host.h"

inline int32_t tnefIoRead(IoObject* io, void* buffer, uint32_t count) {
    if (io == nullptr || io->read == nullptr) return 0;
    int32_t got = io->read(io, buffer, count);
    return got < 0 ? 0 : got;
}

inline int32_t tnefIoSeek(IoObject* io, int64_t offset, int32_t origin) {
    if (io == nullptr || io->seek == nullptr) return 0;
    return io->seek(io, offset, origin);
}

inline int32_t tnefIoWrite(IoObject* io, const void* buffer, uint32_t count) {
    if (io == nullptr || io->write == nullptr) return 0;
    return io->write(io, buffer, count);
}
