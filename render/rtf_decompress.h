// Decoding of a stored compressed-RTF property value (PR_RTF_COMPRESSED) into
// plain RTF text.
#pragma once

#include <stdint.h>

#include "reader/host.h"

// Turns the bytes of a stored compressed-RTF value into RTF text in a new
// buffer from `allocator`.
//
// A value above 16 bytes starts with a 16-byte header (compressed size, raw
// size, type, CRC; neither the compressed size nor the CRC is checked). The
// type "LZFu" is decoded; "MELA" is handed out as stored, its raw size long;
// any other type is handed out as the rest of the value. A value of 16 bytes
// or fewer has no header and is handed out whole. Handing out as stored
// sends one line to the trace sink. A null `data` counts as an empty value.
//
// Returns 0 with `text` (not terminated, to be freed with the same
// allocator) and `textSize` set. `textSize` is the raw size of the header
// even when the input ends before that many bytes were produced; the part
// never reached is zero bytes. Returns 2 when the buffer can't be had,
// including for a raw size that does not fit a signed 32-bit count with the
// 207-byte prologue and for a negative `size`; the out arguments are then
// untouched and nothing stays allocated.
int32_t tnefDecompressRtf(HostAllocator* allocator, const uint8_t* data, int32_t size,
                          uint8_t** text, uint32_t* textSize);
