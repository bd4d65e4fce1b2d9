// A compressed-RTF ("LZFu") compressor for tests and samples, the uncompressed
// "MELA" wrapping, and the pieces they are made of, so that a test can also
// lay down exactly the items it wants; and the RTF text they compress
// (rtf_documents.cpp).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
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

// Groups of a control byte and up to eight items; a last partial group keeps
// its control byte with the unused bits clear.
Bytes packLzfuItems(const std::vector<LzfuItem>& items);

// The 16-byte header (compressed size = payload + 12, raw size, type, CRC of
// a compressed payload, else 0), then the payload.
Bytes lzfuValue(const Bytes& payload, uint32_t rawSize, uint32_t type);

enum : uint32_t {
    kLzfuTypeCompressed = 0x75465A4C,  // "LZFu"
    kLzfuTypeStored = 0x414C454D,      // "MELA"
};

// `raw` as a whole "LZFu" value (a greedy longest-match parse against the
// dictionary that starts with the prologue), or stored as a "MELA" value.
Bytes compressRtf(const Bytes& raw);
Bytes storeRtfUncompressed(const Bytes& raw);

// Text in the manner of RTF, the same for the same seed: control words,
// words, line breaks, and runs of one character that compress into
// overlapping references.
Bytes sampleRtfText(uint32_t seed, size_t size);

// RTF documents of about `size` bytes (the closing groups after it), as mail
// clients write them, for the benchmarks and the fuzz seeds: HTML
// encapsulated the way Outlook does it, text-heavy native RTF, and native RTF
// thick with formatting and tables.
enum class RtfKind { kHtmlEncapsulated, kTextHeavy, kFormatHeavy };
std::string rtfDocument(RtfKind kind, size_t size);

}  // namespace tneftest
