// Small text helpers that allocate through a host allocator.
#pragma once

#include "reader/host.h"

// A terminated copy of `text` from `allocator`, or null when refused.
char* tnefCopyText(HostAllocator* allocator, const char* text);

// Length of a terminated text, but at most `limit` bytes.
int32_t tnefBoundedLength(const char* text, int32_t limit);
