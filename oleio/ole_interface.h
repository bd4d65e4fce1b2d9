// The entry point of the OLE storage library, for callers that link it
// rather than load it.
//
// What the table's operations do:
// - openStorage(io, allocator): reads the compound file through `io`, which
//   must be open and answer seek and read (tell too, or a set `size`, to learn
//   the file's length). Only the header, the list of FAT sectors, one sector
//   of each allocation table and the list of directory sectors are held, all
//   from `allocator`. Null for a file it can't trust. The IoObject stays the
//   caller's: it is never opened, closed or destroyed here.
// - findStream(storage, name): looks among the root storage's children for a
//   stream of that name (see name_match.cpp for how names compare); nonzero
//   when found, and that stream becomes the current one. A failed search
//   leaves no current stream.
// - openStream(storage): an IoObject over the current stream with open (back
//   to the start), read, seek (origins 0, 1 and 2), tell and close, and `size`
//   set to the stream's length; no write and no destroy. Null when there is
//   no current stream, when its chain is damaged, or when memory is refused.
//   One stream at a time: opening another releases the one before.
// - closeStream(storage): releases what openStream gave out.
// - resetStream(storage, 0): forgets the current stream.
// - closeStorage(storage): releases everything, an open stream included.
#pragma once

#include "reader/host.h"

extern "C" int32_t GetOLEInterface(OleInterface* table);
