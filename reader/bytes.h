// Little-endian numbers assembled byte by byte, so that no alignment is
// assumed anywhere in a buffer.
#pragma once

#include <stdint.h>

inline uint32_t tnefLe16(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8);
}

inline uint32_t tnefLe32(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) |
           (static_cast<uint32_t>(p[2]) << 16) | (static_cast<uint32_t>(p[3]) << 24);
}

inline uint64_t tnefLe64(const uint8_t* p) {
    return static_cast<uint64_t>(tnefLe32(p)) | (static_cast<uint64_t>(tnefLe32(p + 4)) << 32);
}
