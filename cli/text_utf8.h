// Text from the module made into UTF-8 for people and for JSON.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "reader/host.h"

namespace tnefcli {

bool isValidUtf8(std::string_view text);

// UTF-16LE to UTF-8; an unpaired surrogate becomes U+FFFD, a last odd byte
// is dropped.
std::string utf16leToUtf8(const uint8_t* bytes, size_t length);

// 8-bit text to UTF-8: text that already is valid UTF-8 stays as it is,
// anything else is read in `charset` (windows-1252 where none is known)
// through the host's conversion service.
std::string eightBitToUtf8(HostContext* host, std::string_view text, CharsetId charset);

// Text without the zero bytes (8-bit) or zero units (16-bit) at its end.
std::string_view withoutTrailingNuls(std::string_view text, bool sixteenBit);

// UTF-8 made safe to print on a terminal: control characters are shown as
// \xNN so that a name can't move the cursor or change colours.
std::string printable(std::string_view text);

}  // namespace tnefcli
