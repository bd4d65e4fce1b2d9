// The module calls a bench makes, in the order the tool makes them, with
// everything the module hands out released again.
#pragma once

#include <cstdint>

#include "host/memory.h"
#include "reader/host.h"

namespace tnefbench {

// What `tnef-reader list` asks: the subfile count, every subfile's
// description, and the summary of the message. Returns the subfile count, or
// -1 when one of the calls failed.
int32_t listContainer(TnefContainer* container, tnefhost::HostMemory& results);

// Extracts subfile `index` to `output`; returns the module's status.
int32_t extractSubfileTo(TnefContainer* container, int32_t index, IoObject* output,
                         tnefhost::HostMemory& results);

}  // namespace tnefbench
