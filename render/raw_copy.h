#pragma once

#include "reader/host.h"

// Block size of every copy the module makes; the block lives on the stack.
enum : int32_t { kTnefCopyBlock = 4096 };

// Copies `size` bytes from `position` of the input to `target` in blocks. A
// short read ends the copy early, which is no failure; the writes' results
// are not looked at.
void tnefCopyInputRange(TnefContainer* container, int64_t position, int32_t size, IoObject* target);
