// A compressed-RTF ("LZFu") compressor for tests and samples, the uncompressed
// "MELA" wrapping, and the pieces they are made of, so that a test can also
// lay down exactly the items it wants.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/support/tnef_writer.h"

namespace tneftest {

// One item of a compressed payload: a literal byte, or a reference to a
// 12-bit dictionary position with a length of 2 to 17.
struct LzfuItem {
    bool reference = false;
    uint8_t literal = 0;
    uint16_t position = 0;
    uint8_t length = 0;

    static LzfuItem byte(uint8_t value) { return LzfuItem{false, value, 0, 0}; }
    static LzfuItem ref(uint16_t position, uint8_t length) {
        return LzfuItem{true, 0, position, length};
    }
};

// Packs items into groups of a control byte and up to eight items. A last
// partial group keeps its control byte with the unused bits clear.
Bytes packLzfuItems(const std::vector<LzfuItem>& items);

// Greedy longest-match parse of `raw` against the dictionary that starts with
// the 207-byte prologue, ending with the end mark (a reference to the write
// position).
std::vector<LzfuItem> lzfuItemsFor(const Bytes& raw);

// CRC-32 of compressed RTF: the reflected table of polynomial 0xEDB88320,
// started at 0, with no final inversion.
uint32_t lzfuCrc32(const uint8_t* data, size_t size);

// A whole stored value: the 16-byte header (compressed size = payload + 12,
// raw size, type, CRC of the payload), then the payload.
Bytes lzfuValue(const Bytes& payload, uint32_t rawSize, uint32_t type);

enum : uint32_t {
    kLzfuTypeCompressed = 0x75465A4C,  // "LZFu"
    kLzfuTypeStored = 0x414C454D,      // "MELA"
};

// `raw` compressed into a complete "LZFu" value.
Bytes compressRtf(const Bytes& raw);
// `raw` wrapped as an uncompressed "MELA" value.
Bytes storeRtfUncompressed(const Bytes& raw);

// Text in the manner of RTF, the same for the same seed: control words,
// words, line breaks, and runs of one character that compress into
// overlapping references.
Bytes sampleRtfText(uint32_t seed, size_t size);

}  // namespace tneftest
