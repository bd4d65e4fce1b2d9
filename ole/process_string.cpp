// Copies of strings found in descriptor streams, stored for the host in a
// target that owns its string: a new copy frees the one it replaces.

#include <string.h>

#include "ole/descriptor_parsers.h"
#include "ole/ole_log.h"
#include "reader/memory.h"

namespace {

// Room for the terminator, and one byte to spare.
enum : int32_t { kCopySlack = 2 };

}  // namespace

int32_t oleProcessString(HostContext* host, HostAllocator* allocator, const char* source,
                         char** target) {
    size_t length = strlen(source);
    int32_t size = tnefSizeAdd(tnefSaturate(static_cast<int64_t>(length)), kCopySlack);
    auto* copy = static_cast<char*>(tnefAlloc(allocator, size));
    if (copy == nullptr) {
        oleLogLine(host,
                   "oleProcessString(): Failed to allocate output string from input string...");
        oleLogLine(host, source);
        return kTnefNoMemory;
    }
    memcpy(copy, source, length + 1);
    tnefFree(allocator, *target);
    *target = copy;
    return kTnefOk;
}
