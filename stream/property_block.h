// MAPI property blocks of TNEFREC_MAPIPROPS and TNEFREC_ATTACHMENT records.
#pragma once

#include "reader/host.h"

// Value counts and property counts above this are refused.
enum : int32_t { kTnefMaxPropertyCount = 65535 };

// MAPI property types as they stand in the low 16 bits of a tag.
enum : uint32_t {
    kPtUnspecified = 0,
    kPtNull = 1,
    kPtI2 = 2,
    kPtLong = 3,
    kPtFloat = 4,
    kPtDouble = 5,
    kPtCurrency = 6,
    kPtAppTime = 7,
    kPtError = 10,
    kPtBoolean = 11,
    kPtObject = 13,
    kPtI8 = 20,
    kPtString8 = 30,
    kPtUnicode = 31,
    kPtSysTime = 64,
    kPtClsid = 72,
    kPtBinary = 258,
    kPtMultiValue = 0x1000,
};

// How a value of a type (multi-value flag removed) is laid out in a block:
// the number of inline bytes, or kTnefCountedValue for a length-prefixed
// value that stays in the stream; 0 for a type that consumes nothing.
enum : int32_t { kTnefCountedValue = -1 };
int32_t tnefValueLayout(uint32_t type);

// True for the types that always carry a value count.
bool tnefTypeAlwaysCounted(uint32_t type);

// Bytes that follow a counted value or a string name of `length` bytes, so
// that data plus filler is a multiple of 4.
inline uint64_t tnefPaddedLength(uint32_t length) {
    return static_cast<uint64_t>(length) + ((length % 4) != 0 ? 4 - (length % 4) : 0);
}

// True for an id that carries name fields (GUID, kind, name).
inline bool tnefIsNamedId(uint32_t id) {
    return id >= 0x8000 && id <= 0xFFFE;
}

// Decodes the block at the input's position into currentObject's rows.
int32_t tnefReadPropertyBlock(TnefContainer* container, uint32_t length);

// Releases an array of rows and each row's values.
int32_t tnefFreePropRows(TnefContainer* container, TnefPropRow* rows, int32_t count);
