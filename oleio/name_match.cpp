// Matching a caller's stream name against a directory entry's name.
//
// Entry names are UTF-16; the caller's name is a NUL-terminated byte string
// read as UTF-8 (plain ASCII, control bytes such as 0x01 and 0x06 included,
// is UTF-8 too). Each code point is compared with the entry's code units, a
// code point above U+FFFF with its surrogate pair. Letters a-z and A-Z
// compare without regard to case, as the compound file format orders names;
// every other character must be equal, since the case rules of the format's
// writers for other scripts are not knowable here. A byte string that is not
// well-formed UTF-8 names nothing.
#include "oleio/storage.h"

namespace {

uint32_t foldAscii(uint32_t unit) {
    return unit >= 'a' && unit <= 'z' ? unit - 'a' + 'A' : unit;
}

// Decodes one code point at `*p` and moves past it; 0 on a malformed
// sequence. The string's terminator is never consumed.
int32_t nextCodePoint(const uint8_t** p, uint32_t* codePoint) {
    const uint8_t* s = *p;
    uint32_t lead = s[0];
    uint32_t extra = 0;
    uint32_t value = 0;
    uint32_t least = 0;
    if (lead < 0x80) {
        value = lead;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        extra = 1, value = lead & 0x1F, least = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        extra = 2, value = lead & 0x0F, least = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        extra = 3, value = lead & 0x07, least = 0x10000;
    } else {
        return 0;
    }
    for (uint32_t i = 1; i <= extra; ++i) {
        if ((s[i] & 0xC0) != 0x80) return 0;  // the terminator fails here too
        value = (value << 6) | (s[i] & 0x3F);
    }
    if (value < least || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 0;
    *p = s + 1 + extra;
    *codePoint = value;
    return 1;
}

}  // namespace

int32_t cfbNameMatches(const char* name, const uint16_t* units, uint32_t unitCount) {
    if (unitCount == 0) return 0;
    const uint8_t* p = reinterpret_cast<const uint8_t*>(name);
    uint32_t at = 0;
    while (*p != 0) {
        uint32_t codePoint = 0;
        if (nextCodePoint(&p, &codePoint) == 0) return 0;
        if (codePoint > 0xFFFF) {
            uint32_t v = codePoint - 0x10000;
            if (at + 2 > unitCount || units[at] != 0xD800 + (v >> 10) ||
                units[at + 1] != 0xDC00 + (v & 0x3FF))
                return 0;
            at += 2;
        } else {
            if (at + 1 > unitCount || foldAscii(units[at]) != foldAscii(codePoint)) return 0;
            at += 1;
        }
    }
    return at == unitCount ? 1 : 0;
}
