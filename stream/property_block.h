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

// A cursor over bytes laid out as properties: a property block, or the
// recipient table that reuses its layout. `offset` is 64 bits wide so that an
// advance by a hostile length can carry it past the end but never wrap it
// back, and every later test then fails.
struct TnefBlockCursor {
    const uint8_t* bytes;
    uint64_t length;  // end of the data
    uint64_t offset;
    int64_t base;  // input position of the first byte

    // True when `n` bytes from `offset` lie within the data.
    bool needs(uint64_t n) const { return offset + n <= length; }
    uint32_t take32();
    // Input position of `offset`, as the trace lines show it.
    uint32_t position() const { return static_cast<uint32_t>(base + static_cast<int64_t>(offset)); }
};

// What a tag tells about the property behind it.
struct TnefTagParts {
    uint32_t type;  // multi-value flag removed
    uint32_t id;
    int32_t multi;  // 1 when a value count field precedes the values
};
TnefTagParts tnefSplitTag(uint32_t tag);

// Passes over the GUID, name kind and name of a named property (with their
// trace lines). False when one of these fields lies past the end; the length
// of a string name itself is not tested, the next test catches it.
bool tnefSkipPropertyName(const TnefContainer* container, TnefBlockCursor& cursor, uint32_t type);

// Trace lines of a property's tag (`position` is the place behind it), of a
// 4-byte value, and of a counted value whose data starts at `filePos`.
void tnefTraceTag(const TnefContainer* container, const TnefTagParts& parts, uint32_t position);
void tnefTraceInteger(const TnefContainer* container, uint32_t value);
void tnefTraceCountedValue(const TnefContainer* container, int64_t filePos, uint32_t length);

// Decodes the block at the input's position into currentObject's rows.
int32_t tnefReadPropertyBlock(TnefContainer* container, uint32_t length);

// Releases an array of rows and each row's values.
int32_t tnefFreePropRows(TnefContainer* container, TnefPropRow* rows, int32_t count);
