// The byte tables of the single-byte charsets, made at build time from
// glibc's iconv by web/tools/make_byte_tables.
#pragma once

#include "reader/host.h"

namespace tnefweb {

// 256 code points, one per byte value (tnefhost::kUnassigned for none), or
// null when `id` is not a single-byte charset of the table.
const char16_t* generatedByteTable(CharsetId id);

}  // namespace tnefweb
