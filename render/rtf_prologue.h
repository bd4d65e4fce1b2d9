// The text that a compressed-RTF dictionary holds before the first decoded
// byte: 207 bytes of an RTF preamble. The decoder and the test compressor
// both start from it.
#pragma once

#include <stdint.h>

enum : int32_t {
    kRtfPrologueSize = 207,
    // The dictionary is addressed by 12-bit positions.
    kRtfDictionarySize = 4096,
};

// Laid out as one literal so that the compiler checks the length; note the
// line feed before the carriage return in the middle.
inline constexpr char kRtfPrologueText[] =
    "{\\rtf1\\ansi\\mac\\deff0\\deftab720{\\fonttbl;}{\\f0\\fnil \\froman \\fswiss "
    "\\fmodern \\fscript \\fdecor MS Sans SerifSymbolArialTimes New RomanCourier"
    "{\\colortbl\\red0\\green0\\blue0"
    "\n\r"
    "\\par \\pard\\plain\\f0\\fs20\\b\\i\\u\\tab\\tx";

static_assert(sizeof kRtfPrologueText - 1 == kRtfPrologueSize, "prologue is 207 bytes");
static_assert(kRtfPrologueText[168] == '\n' && kRtfPrologueText[169] == '\r',
              "line feed at 168, carriage return at 169");

inline const uint8_t* tnefRtfPrologue() {
    return reinterpret_cast<const uint8_t*>(kRtfPrologueText);
}
