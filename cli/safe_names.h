// File names for extracted subfiles. Nothing a stream says is trusted as a
// path: what comes out is always one plain name inside the target folder.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace tnefcli {

// Longest name made here, in bytes, leaving room under the usual 255-byte
// limit for a " (N)" suffix and a body extension.
constexpr size_t kMaxSafeNameBytes = 200;

// `name` (UTF-8) made into one safe file name:
// - path separators ('/' and '\\'), control characters (C0, DEL, C1),
//   bidirectional overrides and the characters Windows forbids (<>:"|?*,
//   so also drive letters) become '_';
// - leading dots become '_' (no ".", "..", or hidden file), leading blanks
//   and trailing dots and blanks are dropped;
// - device names (CON, PRN, AUX, NUL, COM1-9, LPT1-9, with any extension)
//   get a leading '_';
// - an overlong name is cut at a character boundary, keeping a short
//   extension;
// - an empty result, which includes a name of dots and blanks alone,
//   becomes `fallback`.
std::string safeFileName(std::string_view name, std::string_view fallback);

// Hands out distinct names: the first claim of "a.pdf" keeps it, the next
// ones get "a (1).pdf", "a (2).pdf", ... Names that differ only in ASCII
// case count as the same, so that the files can live side by side on a
// case-insensitive file system too.
class UniqueNames {
public:
    std::string claim(const std::string& name);

private:
    bool taken(const std::string& name) const;
    std::set<std::string> used_;
};

}  // namespace tnefcli
