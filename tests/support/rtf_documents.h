// RTF documents of a given size, as mail clients write them, for the
// benchmarks and the fuzz seeds: HTML encapsulated the way Outlook does it,
// text-heavy native RTF, and native RTF thick with formatting and tables.
#pragma once

#include <cstddef>
#include <string>

namespace tneftest {

enum class RtfKind { kHtmlEncapsulated, kTextHeavy, kFormatHeavy };

// A whole document of about `size` bytes (the closing groups after it).
std::string rtfDocument(RtfKind kind, size_t size);

}  // namespace tneftest
