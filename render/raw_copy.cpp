#include "render/raw_copy.h"

#include "reader/io.h"

void tnefCopyInputRange(TnefContainer* container, int64_t position, int32_t size, IoObject* target) {
    tnefIoSeek(container->io, position, kSeekSet);
    uint8_t block[kTnefCopyBlock];
    int32_t remaining = size;
    while (remaining > 0) {
        int32_t want = remaining < kTnefCopyBlock ? remaining : kTnefCopyBlock;
        int32_t got = tnefIoRead(container->io, block, static_cast<uint32_t>(want));
        if (got < 1) break;
        remaining -= got;
        tnefIoWrite(target, block, static_cast<uint32_t>(got));
    }
}
