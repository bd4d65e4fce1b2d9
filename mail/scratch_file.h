// Scratch files: unlinked temporary files that vanish with their descriptor.
#pragma once

#include <string>

namespace tnefmail {

// A new empty scratch file open for reading and writing, or -1 with the
// reason in `error`. $TMPDIR is honoured.
int makeScratchFile(std::string* error);

// Writes all of `size` bytes; false on any failure (errno tells why).
bool writeAll(int fd, const void* bytes, size_t size);

}  // namespace tnefmail
