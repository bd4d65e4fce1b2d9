// Subfile names taken from descriptor streams are made safe for a file
// system by replacing, one for one, each byte that can't stand in a name.

#include "ole/descriptor_parsers.h"

namespace {

// The printable characters a file name can't hold, with the look-alike
// that stands in for each. Any other refused byte becomes '_'.
struct Replacement {
    uint8_t refused;
    uint8_t replacement;
};

constexpr Replacement kReplacements[] = {
    {'/', '\\'}, {'"', '\''}, {'*', '+'}, {':', ';'},
    {'<', '['},  {'>', ']'},  {'?', '#'}, {'|', '!'},
};

constexpr uint8_t kDefaultReplacement = '_';

uint8_t replacementFor(uint8_t byte) {
    for (const Replacement& entry : kReplacements) {
        if (entry.refused == byte) return entry.replacement;
    }
    return kDefaultReplacement;
}

}  // namespace

int32_t oleIsValidFileNameChar(uint8_t byte) {
    // Taken as a signed byte, so everything from 0x80 up is refused as well.
    int32_t value = static_cast<int8_t>(byte);
    if (value < 32 || value > 126) return 0;
    for (const Replacement& entry : kReplacements) {
        if (entry.refused == byte) return 0;
    }
    return 1;
}

int32_t oleCleanFileName(char* text, int32_t length) {
    if (text == nullptr) return 0;
    int32_t changed = 0;
    for (int32_t i = 0; i < length; ++i) {
        auto byte = static_cast<uint8_t>(text[i]);
        uint8_t clean = byte;
        if (!oleIsValidFileNameChar(byte)) {
            clean = replacementFor(byte);
        } else if (byte == '&') {
            clean = '$';
        }
        if (clean != byte) {
            text[i] = static_cast<char>(clean);
            changed = 1;
        }
    }
    return changed;
}
