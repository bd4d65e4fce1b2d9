// The Ole stream of a linked object. Its layout is not walked; instead the
// file moniker's path is found by its surroundings:
//
//   stop byte, path, NUL, two bytes, 0xAD 0xDE
//
// The 0xAD 0xDE marker is searched for, the NUL is checked at its fixed
// distance in front of it, and the path's start is the byte behind the
// nearest stop byte before the NUL.

#include "ole/byte_search.h"
#include "ole/descriptor_parsers.h"
#include "ole/ole_log.h"

namespace {

enum : uint8_t { kMarkerFirst = 0xAD, kMarkerSecond = 0xDE };
// From the marker's second byte back to the NUL that ends the path.
enum : int32_t { kMarkerToNul = 4 };

// Bytes that can't be part of the path: control bytes, bytes from 0x80 up,
// and the characters a file name never holds. Path separators and the
// drive colon are part of it.
bool isStopByte(uint8_t byte) {
    switch (byte) {
        case 0x22:
        case 0x2A:
        case 0x3C:
        case 0x3E:
        case 0x3F:
        case 0x7C:
            return true;
        default:
            return static_cast<int8_t>(byte) < 0x1F;
    }
}

int32_t fail(HostContext* host, const char* line) {
    oleLogLine(host, line);
    return kTnefNoName;
}

}  // namespace

int32_t oleProcessOleStream(HostContext* host, HostAllocator* allocator, const uint8_t* buffer,
                            int32_t count, int32_t hits, char** target, char** secondTarget) {
    int32_t end = oleReadableCount(buffer, count);
    // Offset of the second byte of the last marker passed.
    int32_t markerEnd = 0;
    for (int32_t hit = 0; hit < hits; ++hit) {
        int32_t marker =
            oleFindPair(buffer, hit == 0 ? 0 : markerEnd + 1, end, kMarkerFirst, kMarkerSecond);
        if (marker < 0) {
            return fail(host,
                        "oleProcessOleStream(): Not enough data in buffer (while finding "
                        "0xDEAD).");
        }
        markerEnd = marker + 1;
    }

    int32_t nul = markerEnd - kMarkerToNul;
    if (nul < 0 || buffer[nul] != 0) {
        return fail(host, "oleProcessOleStream(): Cannot find end of string in buffer.");
    }
    int32_t stop = nul - 1;
    while (stop >= 0 && !isStopByte(buffer[stop])) --stop;
    if (stop <= 0) {
        return fail(host, "oleProcessOleStream(): Cannot find start of string in buffer.");
    }

    const char* path = reinterpret_cast<const char*>(buffer + stop + 1);
    int32_t status = oleProcessString(host, allocator, path, target);
    if (status == kTnefOk && secondTarget != nullptr) {
        status = oleProcessString(host, allocator, path, secondTarget);
    }
    return status;
}
