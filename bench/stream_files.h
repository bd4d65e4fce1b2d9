// Stream files the benches share within one run: written once into a
// scratch folder under $TMPDIR (or /tmp) when first asked for, and removed,
// folder and all, when the process ends.
#pragma once

#include <cstdint>
#include <string>

#include "bench/big_stream.h"

namespace tnefbench {

struct StreamFile {
    std::string path;
    BigStreamLayout layout;
};

// The stream of `fileBytes` bytes with the default plan (three attachments,
// the first holding the bulk). Null with `error` set when it can't be made,
// for instance when the disk lacks the room.
const StreamFile* streamFile(uint64_t fileBytes, bool sparse, std::string* error);

// A path for a file of the bench's own in the scratch folder (not made).
std::string scratchPath(const std::string& name);

}  // namespace tnefbench
