// Which codec reads and writes each CharsetId the host knows: a glibc iconv
// codec for most, a built-in byte table for the two Adobe text encodings
// that iconv lacks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "reader/host.h"

namespace tnefhost {

// A code point that a byte table leaves unassigned.
constexpr char16_t kUnassigned = 0xFFFF;

struct CharsetCodec {
    CharsetId id;
    // The iconv name of the codec; null when `byteTable` serves the charset.
    const char* iconvName;
    // 256 code points, one per byte value (kUnassigned for none).
    const char16_t* byteTable;
    // Bytes per code unit: 2 for the UTF-16 forms, 1 for everything else.
    size_t unitSize;
};

// The codec of `id`, or null for an id the host can't convert.
const CharsetCodec* charsetCodec(CharsetId id);

// Every codec of the table, in id order.
const CharsetCodec* charsetCodecsBegin();
const CharsetCodec* charsetCodecsEnd();

}  // namespace tnefhost
