// The AttachDesc stream: after 4 bytes, a 0x0D, the attachment's name and
// another 0x0D. The name may be a whole path; it is reduced to a bare file
// name by dropping every control byte and every character that separates or
// can't stand in a path, so "C:\dir\a.txt" becomes "Cdira.txt".

#include "ole/byte_search.h"
#include "ole/descriptor_parsers.h"
#include "reader/memory.h"

namespace {

enum : int32_t { kFirstDelimiterOffset = 4, kNameOffset = 5 };
enum : uint8_t { kDelimiter = 0x0D };
// Room for the terminator, and one byte to spare.
enum : int32_t { kNameSlack = 2 };

bool isDroppedFromName(uint8_t byte) {
    switch (byte) {
        case 0x22:
        case 0x2A:
        case 0x2F:
        case 0x3A:
        case 0x3C:
        case 0x3E:
        case 0x3F:
        case 0x5C:
        case 0x7C:
            return true;
        default:
            return byte < 0x20;
    }
}

}  // namespace

int32_t oleProcessAttachDescStream(HostContext* /*host*/, HostAllocator* allocator,
                                   const uint8_t* buffer, int32_t count, char** target) {
    int32_t end = oleReadableCount(buffer, count);
    if (end < kNameOffset || buffer[kFirstDelimiterOffset] != kDelimiter) return kTnefOk;
    int32_t nameEnd = oleFindByte(buffer, kNameOffset, end, kDelimiter);
    if (nameEnd == end || nameEnd == kNameOffset) return kTnefOk;

    tnefFree(allocator, *target);
    *target = nullptr;
    auto* name =
        static_cast<char*>(tnefAlloc(allocator, tnefSizeAdd(nameEnd - kNameOffset, kNameSlack)));
    if (name == nullptr) return kTnefNoMemory;

    int32_t length = 0;
    for (int32_t at = kNameOffset; at < nameEnd; ++at) {
        if (!isDroppedFromName(buffer[at])) name[length++] = static_cast<char>(buffer[at]);
    }
    name[length] = '\0';
    *target = name;
    return kTnefOk;
}
