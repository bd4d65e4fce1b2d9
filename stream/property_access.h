// Reading single properties of an object as MetaElements.
#pragma once

#include "reader/host.h"

// Largest value that a MetaElement may fetch from the input.
enum : int32_t { kTnefMaxElementBytes = 65535 };

// Where a value that stays in the input lies.
struct TnefPropLocation {
    int64_t filePos;
    int32_t length;
};

// Finds the row of `tag` in `object` and turns its first value into a fresh
// MetaElement from `allocator`, reading strings and binaries from the input.
int32_t tnefGetProperty(TnefContainer* container, HostAllocator* allocator, TnefObject* object,
                        uint32_t tag, MetaElement** out);

// Tells where the first value of a counted property lies; 0, or 1 when there
// is nothing to tell.
int32_t tnefGetPropertyLocation(TnefObject* object, uint32_t tag, TnefPropLocation* out);

// Releases an element and what it points to.
int32_t tnefFreeElement(HostAllocator* allocator, MetaElement* element);

// Fetches `tag` and returns the element only when it holds a value of
// `type`; otherwise releases whatever came and returns null.
MetaElement* tnefFetchTyped(TnefContainer* container, HostAllocator* allocator, TnefObject* object,
                            uint32_t tag, int32_t type);
