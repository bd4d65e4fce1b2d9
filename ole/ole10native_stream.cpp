// The Ole10Native stream. Two shapes: a bitmap, whose 4-byte size is
// followed by the bitmap file itself ("BM..."), and a package, which wraps a
// file with its label, its original path, a temporary path and its size:
//
//   4 bytes, 2 bytes, label NUL, path NUL, 8 bytes, temporary path NUL,
//   4-byte payload size, payload.
//
// From a package the label becomes the subfile's name.

#include <string.h>

#include "ole/byte_search.h"
#include "ole/descriptor_parsers.h"
#include "ole/ole_log.h"
#include "reader/bytes.h"

namespace {

enum : int32_t {
    kBitmapMarkOffset = 4,  // where "BM" stands in the bitmap form
    kBitmapStart = 4,       // the bitmap's first byte
    kPackageLabelOffset = 6,
    kSkippedAfterPath = 8,
    kPayloadSizeBytes = 4,
};

bool isBitmapForm(const uint8_t* bytes, int32_t end) {
    return end > kBitmapMarkOffset + 1 && bytes[kBitmapMarkOffset] == 0x42 &&
           bytes[kBitmapMarkOffset + 1] == 0x4D;
}

int32_t fail(HostContext* host, const char* line) {
    oleLogLine(host, line);
    return kTnefNoName;
}

}  // namespace

int32_t oleProcessOle10NativeStream(HostContext* host, HostAllocator* allocator,
                                    const uint8_t* buffer, int32_t count, int32_t* startOffset,
                                    int32_t* payloadSize, char** target) {
    *startOffset = 0;
    int32_t end = oleReadableCount(buffer, count);
    if (isBitmapForm(buffer, end)) {
        // Only what was read is known, so the bitmap runs to the end of it.
        *startOffset = kBitmapStart;
        *payloadSize = end - kBitmapStart;
        return kTnefOk;
    }

    if (kPackageLabelOffset >= end) {
        return fail(host,
                    "oleProcessOle10NativeStream(): Not enough data in buffer (while skipping 1st "
                    "6 bytes).");
    }
    int32_t labelEnd = oleFindByte(buffer, kPackageLabelOffset, end, 0);
    if (labelEnd == end) {
        return fail(host,
                    "oleProcessOle10NativeStream(): Not enough data in buffer (while skipping 1st "
                    "string).");
    }
    int32_t status = oleProcessString(
        host, allocator, reinterpret_cast<const char*>(buffer + kPackageLabelOffset), target);
    if (status != kTnefOk) return status;
    oleCleanFileName(*target, static_cast<int32_t>(strlen(*target)));

    int32_t pathEnd = oleFindByte(buffer, labelEnd + 1, end, 0);
    if (pathEnd == end) {
        return fail(host,
                    "oleProcessOle10NativeStream(): Not enough data in buffer (while skipping 2nd "
                    "string).");
    }
    // Offsets stay below `end`, so stepping over a few bytes is measured
    // against what is left rather than added up.
    if (end - (pathEnd + 1) <= kSkippedAfterPath) {
        return fail(host,
                    "oleProcessOle10NativeStream(): Not enough data in buffer (while skipping 8 "
                    "bytes after 2nd string).");
    }
    int32_t tempPathEnd = oleFindByte(buffer, pathEnd + 1 + kSkippedAfterPath, end, 0);
    if (end - tempPathEnd <= kPayloadSizeBytes) {
        return fail(host,
                    "oleProcessOle10NativeStream(): Not enough data in buffer (while skipping 3rd "
                    "string).");
    }
    *payloadSize = static_cast<int32_t>(tnefLe32(buffer + tempPathEnd + 1));
    int32_t payloadStart = tempPathEnd + 1 + kPayloadSizeBytes;
    if (payloadStart >= end) {
        return fail(host,
                    "oleProcessOle10NativeStream(): Not enough data in buffer (while skipping 4 "
                    "bytes after 3rd string).");
    }
    *startOffset = payloadStart;
    return kTnefOk;
}
