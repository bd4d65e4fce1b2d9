// A GMime stream over a range of a file, read with pread through a
// read-ahead block: GMime reads its streams 4 KiB at a time, and its own
// file stream pays a seek and a read for each. This one pays one pread per
// block, moves no shared file offset (many streams share one descriptor:
// a message's parts, an unwrapped part's slices), and holds its block only
// until it has been read to its end.
#pragma once

#include <gmime/gmime.h>

#include <cstdint>

#include "mail/gobject_ref.h"

namespace tnefmail {

// The bytes [start, end) of `fd`, which must outlive the stream; positions
// are offsets in the file, as GMime's persistent parsing expects.
GRef<GMimeStream> fileRangeStream(int fd, int64_t start, int64_t end);

}  // namespace tnefmail
