// The host's charset services and the charset helpers the tool uses.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "reader/host.h"

namespace tnefhost {

// The id of a name of the charset table, ASCII case ignored; 0 for a name
// that isn't there.
CharsetId charsetByName(std::string_view name);

// The table's name of `id`; empty for an id without a name.
std::string charsetName(CharsetId id);

// The charset a service of `host` works in for `id`: `id` itself, or the
// host's configured default for 0.
CharsetId effectiveCharset(HostContext* host, CharsetId id);

// Whether `byte` opens a two-byte character of charset `id`. Only the
// double-byte Windows code pages behind ids 1 to 4 have lead bytes.
bool isLeadByte(CharsetId id, uint8_t byte);

// Arguments of the text services: a source of bytes and a length not below
// 0 (null only when empty); a target that is a buffer with a capacity not
// below 0, or null with length 0 to measure.
bool usableSource(const HostText* source);
bool usableTarget(const HostTextBuffer* target);

// hostTransformText: 8-bit text of the context's current charset made safe
// inside HTML.
int32_t escapeHtmlText(HostContext* host, const HostText* source, HostTextBuffer* target,
                       int32_t flags);

}  // namespace tnefhost
