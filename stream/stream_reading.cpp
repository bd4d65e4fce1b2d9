// Low-level reading of the input during the scan.
#include <string.h>

#include "reader/io.h"
#include "stream/scanner.h"

int32_t tnefReadLE(TnefContainer* container, int32_t width, uint32_t* out) {
    if (width != 1 && width != 2 && width != 4) return 0;
    uint8_t bytes[4] = {0, 0, 0, 0};
    if (tnefIoRead(container->io, bytes, static_cast<uint32_t>(width)) != width) return 0;
    uint32_t value = 0;
    for (int32_t i = width - 1; i >= 0; --i) value = (value << 8) | bytes[i];
    *out = value;
    container->lFilePos += width;
    return 1;
}

int32_t tnefSkip(TnefContainer* container, int32_t count) {
    container->lFilePos += count;
    return tnefIoSeek(container->io, container->lFilePos, kSeekSet) != 0 ? 1 : 0;
}

int32_t tnefChecksumOk(const uint8_t* bytes, uint32_t length, uint32_t expected) {
    uint32_t sum = 0;
    for (uint32_t i = 0; i < length; ++i) sum += bytes[i];
    return (sum & 0xFFFF) == expected ? 1 : 0;
}
