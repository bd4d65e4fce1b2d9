#include "render/rtf_decompress.h"

#include <string.h>

#include "reader/bytes.h"
#include "reader/memory.h"
#include "reader/trace.h"
#include "render/rtf_prologue.h"

namespace {

// Value types, as the little-endian integer of their four ASCII bytes.
enum : uint32_t {
    kRtfTypeCompressed = 0x75465A4C,  // "LZFu"
    kRtfTypeStored = 0x414C454D,      // "MELA"
};

// Only a value longer than this carries a header.
enum : int32_t { kRtfHeaderSize = 16 };

struct RtfValueHeader {
    uint32_t compressedSize;  // not used: the raw size and the input's end rule
    uint32_t rawSize;
    uint32_t type;
    uint32_t crc;  // never compared: a damaged stream decodes as far as it goes
};

RtfValueHeader readHeader(const uint8_t* data) {
    return RtfValueHeader{tnefLe32(data), tnefLe32(data + 4), tnefLe32(data + 8),
                          tnefLe32(data + 12)};
}

// The raw size as a signed count; beyond 0x7FFFFFFF it is poison, which every
// later size sum keeps and every allocator refuses.
int32_t rawCount(uint32_t rawSize) {
    return tnefSaturate(static_cast<int64_t>(rawSize));
}

// Longest reference, the block a run of literals is copied in, and what one
// whole group may read and write: its control byte and eight items of up to
// two bytes, or eight full references, each then followed by one literal
// block, which is read and written from wherever the items left off.
enum : int32_t {
    kRtfMaxReference = 17,
    kRtfLiteralBlock = 8,
    kRtfGroupInput = 1 + 8 * 2 + kRtfLiteralBlock,
    kRtfGroupOutput = 8 * kRtfMaxReference + kRtfLiteralBlock,
};

// Where a reference's 12-bit position lies in the buffer: inside the
// 4096-byte block in which the write position stands, or in the block before
// when that place is not yet written. Negative when it falls before the
// buffer: then the reference yields nothing.
inline int32_t referenceSource(int32_t out, int32_t position) {
    int32_t from = (out & ~(kRtfDictionarySize - 1)) + position;
    // Without a branch: which block it falls in follows the text, which no
    // branch predictor can follow.
    return from - kRtfDictionarySize * static_cast<int32_t>(from >= out);
}

inline int32_t referencePosition(uint32_t high, uint32_t low) {
    return static_cast<int32_t>((high << 4) | (low >> 4));
}

inline int32_t referenceLength(uint32_t low) {
    return static_cast<int32_t>(low & 0x0F) + 2;
}

// Byte by byte, so that a source running into the bytes just written
// repeats them.
inline void copyForward(uint8_t* buffer, int32_t from, int32_t out, int32_t length) {
    const uint8_t* source = buffer + from;
    uint8_t* target = buffer + out;
    for (int32_t i = 0; i < length; ++i) target[i] = source[i];
}

// Whole groups while a full group's input remains and a full group's output
// fits: no item needs a bound check. The literals between two references are
// taken as one run, copied as a fixed 8-byte block: the bits of a control
// byte follow the text, so a branch per item would be mispredicted all
// along a text with few repeats. A reference whose source lies 17 or more
// bytes back is copied as a fixed 17-byte block. The bytes past a run's or a
// reference's length land inside the buffer, ahead of the write position,
// and are overwritten later or cleared at the end. Returns with `in` and
// `out` on a group boundary.
void inflateWholeGroups(const uint8_t* data, int32_t* inPosition, int32_t size, uint8_t* buffer,
                        int32_t* outPosition, int32_t total) {
    int32_t in = *inPosition;
    int32_t out = *outPosition;
    while (size - in >= kRtfGroupInput && total - out >= kRtfGroupOutput) {
        // A marker bit above the eight items ends the group.
        uint32_t control = data[in++] | 0x100u;
        for (;;) {
            const int run = __builtin_ctz(control);  // literals before the next reference
            memcpy(buffer + out, data + in, kRtfLiteralBlock);
            out += run;
            in += run;
            control >>= run;
            if (control == 1) break;  // only the marker is left
            control >>= 1;
            const uint32_t high = data[in];
            const uint32_t low = data[in + 1];
            in += 2;
            const int32_t from = referenceSource(out, referencePosition(high, low));
            if (from < 0) continue;
            const int32_t length = referenceLength(low);
            if (out - from >= kRtfMaxReference) {
                memcpy(buffer + out, buffer + from, kRtfMaxReference);
            } else {
                copyForward(buffer, from, out, length);
            }
            out += length;
        }
    }
    *inPosition = in;
    *outPosition = out;
}

// Runs the dictionary decoder over data[in..size) into buffer[out..total),
// where buffer[0..out) already holds the prologue. Returns the write position
// reached. The loop ends with the input or the buffer, whichever comes
// first; no token ends it.
int32_t inflateLzfu(const uint8_t* data, int32_t in, int32_t size, uint8_t* buffer, int32_t out,
                    int32_t total) {
    inflateWholeGroups(data, &in, size, buffer, &out, total);
    // The tail, item by item with every bound checked.
    uint32_t control = 0;
    uint32_t count = 0;
    while (out < total && in < size) {
        if ((count & 7) == 0) {
            control = data[in++];
        } else {
            control >>= 1;
        }
        ++count;
        if ((control & 1) == 0) {
            if (in < size) buffer[out++] = data[in++];
            continue;
        }
        // A reference with fewer than two bytes left is dropped unread.
        if (size - in < 2) continue;
        const uint32_t high = data[in];
        const uint32_t low = data[in + 1];
        in += 2;
        const int32_t from = referenceSource(out, referencePosition(high, low));
        if (from < 0) continue;
        const int32_t room = total - out;
        const int32_t length = referenceLength(low) < room ? referenceLength(low) : room;
        copyForward(buffer, from, out, length);
        out += length;
    }
    return out;
}

int32_t handOut(uint8_t* buffer, int32_t rawSize, uint8_t** text, uint32_t* textSize) {
    *text = buffer;
    *textSize = static_cast<uint32_t>(rawSize);
    return kTnefOk;
}

// A value that needs no decoding: `rawSize` bytes from `in` on. A raw size
// beyond the bytes present is delivered like a truncated compressed stream:
// the bytes that are there, then zero bytes up to the raw size.
int32_t dumpStored(HostAllocator* allocator, const uint8_t* data, int32_t in, int32_t size,
                   int32_t rawSize, uint8_t** text, uint32_t* textSize) {
    tnefTrace("don't need to decompress RTF, dump as is\n");
    // At least one byte, so that an empty text never looks like a refusal.
    auto* buffer = static_cast<uint8_t*>(tnefAlloc(allocator, rawSize == 0 ? 1 : rawSize));
    if (buffer == nullptr) return kTnefNoMemory;
    const int32_t present = size - in < rawSize ? size - in : rawSize;
    if (present > 0) memcpy(buffer, data + in, static_cast<size_t>(present));
    if (present < rawSize) memset(buffer + present, 0, static_cast<size_t>(rawSize - present));
    return handOut(buffer, rawSize, text, textSize);
}

int32_t decodeCompressed(HostAllocator* allocator, const uint8_t* data, int32_t in, int32_t size,
                         int32_t rawSize, uint8_t** text, uint32_t* textSize) {
    const int32_t total = tnefSizeAdd(rawSize, kRtfPrologueSize);
    auto* buffer = static_cast<uint8_t*>(tnefAlloc(allocator, total));
    if (buffer == nullptr) return kTnefNoMemory;
    memcpy(buffer, tnefRtfPrologue(), kRtfPrologueSize);
    const int32_t out = inflateLzfu(data, in, size, buffer, kRtfPrologueSize, total);
    // What the input never reached reads as zero bytes.
    memset(buffer + out, 0, static_cast<size_t>(total - out));
    memmove(buffer, buffer + kRtfPrologueSize, static_cast<size_t>(rawSize));
    return handOut(buffer, rawSize, text, textSize);
}

}  // namespace

int32_t tnefDecompressRtf(HostAllocator* allocator, const uint8_t* data, int32_t size,
                          uint8_t** text, uint32_t* textSize) {
    if (data == nullptr && size > 0) size = 0;
    int32_t in = 0;
    RtfValueHeader header{};
    if (size > kRtfHeaderSize) {
        header = readHeader(data);
        in = kRtfHeaderSize;
    }
    if (header.type == kRtfTypeCompressed) {
        return decodeCompressed(allocator, data, in, size, rawCount(header.rawSize), text,
                                textSize);
    }
    // Without a known type the rest of the value is the text; a negative
    // size makes a negative count, which the allocator refuses.
    const int32_t rawSize = header.type == kRtfTypeStored ? rawCount(header.rawSize) : size - in;
    return dumpStored(allocator, data, in, size, rawSize, text, textSize);
}
