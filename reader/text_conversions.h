// Conversions between 8-bit text and 16-bit little-endian Unicode into a
// fresh buffer from the allocator inside the host. Each measures first and
// converts second, and leaves the host's currentCharset as it found it.
#pragma once

#include "reader/host.h"

// 8-bit text in `source` charset to UTF-16LE. The result ends with two zero
// bytes that *outCount leaves out; null for no result.
uint8_t* tnefCharsetToUnicode(TnefContainer* container, const uint8_t* text, int32_t count,
                              int32_t* outCount, CharsetId source);

// UTF-16LE to 8-bit text in `target` charset, exactly *outCount bytes, no
// terminator added; null (and *outCount 0) for no result.
uint8_t* tnefUnicodeToCharset(TnefContainer* container, const uint8_t* text, int32_t count,
                              int32_t* outCount, CharsetId target);
