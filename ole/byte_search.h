// Bounded searches in a descriptor buffer. Positions are offsets into
// `bytes`; `end` is the number of readable bytes, and nothing at or past it
// is looked at.
#pragma once

#include <stdint.h>

// Offset of the first `value` in [from, end), or `end` when there is none.
inline int32_t oleFindByte(const uint8_t* bytes, int32_t from, int32_t end, uint8_t value) {
    int32_t at = from < 0 ? 0 : from;
    while (at < end && bytes[at] != value) ++at;
    return at < end ? at : end;
}

// Offset of the first `first` `second` pair that lies whole in [from, end),
// or -1 when there is none.
inline int32_t oleFindPair(const uint8_t* bytes, int32_t from, int32_t end, uint8_t first,
                           uint8_t second) {
    for (int32_t at = from < 0 ? 0 : from; at < end - 1; ++at) {
        if (bytes[at] == first && bytes[at + 1] == second) return at;
    }
    return -1;
}

// The readable length of a buffer: nothing when there is no buffer or the
// count is negative.
inline int32_t oleReadableCount(const uint8_t* bytes, int32_t count) {
    return bytes == nullptr || count < 0 ? 0 : count;
}
