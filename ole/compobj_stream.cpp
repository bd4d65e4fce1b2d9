// The CompObj stream: 32 bytes of header, then the object's user type name.
// The name tells where the payload starts in the main stream for the object
// kinds whose start is known; for every other kind the decision is left to
// the next descriptor.

#include <string.h>

#include "ole/byte_search.h"
#include "ole/descriptor_parsers.h"
#include "ole/ole_log.h"

namespace {

enum : int32_t { kCompObjNameOffset = 32 };
// The start offset for names that don't settle it.
enum : int32_t { kStartNotSettled = -1 };

struct UserType {
    const char* name;
    int32_t startOffset;
};

// Names that begin with a vendor prefix, looked up by what follows it.
struct UserTypeFamily {
    const char* prefix;
    const UserType* members;
    int32_t memberCount;
};

constexpr UserType kLotusTypes[] = {
    {"Freelance 9 Presentation", 0},
    {"1-2-3 9 Workbook", 0},
};

constexpr UserType kMicrosoftTypes[] = {
    {"ClipArt Gallery", -1},
    {"Graph 2000", 0},
    {"Photo Editor 3.0 Picture", -1},
    {"Word Document", -1},
    {"Word Picture", -1},
};

constexpr UserTypeFamily kFamilies[] = {
    {"Lotus ", kLotusTypes, sizeof kLotusTypes / sizeof kLotusTypes[0]},
    {"Microsoft ", kMicrosoftTypes, sizeof kMicrosoftTypes / sizeof kMicrosoftTypes[0]},
};

constexpr UserType kPlainTypes[] = {
    {"Acrobat Document", 0},
    {"Media Clip", -1},
    {"Package", -1},
    // Paintbrush pictures and sounds keep a 4-byte size in front of the data.
    {"PBrush", 4},
    {"Wave Sound", 4},
};

int32_t lookUp(const UserType* types, int32_t typeCount, const char* name) {
    for (int32_t i = 0; i < typeCount; ++i) {
        if (strcmp(types[i].name, name) == 0) return types[i].startOffset;
    }
    return kStartNotSettled;
}

// Exact, case-sensitive lookup of a terminated user type name.
int32_t startOffsetOfUserType(const char* name) {
    for (const UserTypeFamily& family : kFamilies) {
        size_t prefixLength = strlen(family.prefix);
        if (strncmp(name, family.prefix, prefixLength) == 0) {
            return lookUp(family.members, family.memberCount, name + prefixLength);
        }
    }
    return lookUp(kPlainTypes, sizeof kPlainTypes / sizeof kPlainTypes[0], name);
}

}  // namespace

int32_t oleProcessCompObjStream(HostContext* host, const uint8_t* buffer, int32_t count,
                                int32_t* startOffset) {
    *startOffset = kStartNotSettled;
    int32_t end = oleReadableCount(buffer, count);
    if (end <= kCompObjNameOffset) {
        oleLogLine(host,
                   "oleProcessCompObjStream(): Not enough data in buffer (while skipping 1st 32 "
                   "bytes).");
        return kTnefNoName;
    }
    int32_t nul = oleFindByte(buffer, kCompObjNameOffset, end, 0);
    if (nul == end) {
        oleLogLine(host,
                   "oleProcessCompObjStream(): Not enough data in buffer (while getting 1st "
                   "string).");
        return kTnefNoName;
    }
    if (nul == kCompObjNameOffset) {
        oleLogLine(host, "oleProcessCompObjStream(): No name in buffer.");
        return kTnefNoName;
    }
    *startOffset =
        startOffsetOfUserType(reinterpret_cast<const char*>(buffer + kCompObjNameOffset));
    return kTnefOk;
}
