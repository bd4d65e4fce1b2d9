// The one pass over a TNEF stream that builds the object list.
#pragma once

#include "reader/host.h"

// Walks the whole input once: signature, then record after record. Leaves
// the message and its attachments in the container's object list and returns
// a status.
int32_t tnefScanStream(TnefContainer* container);

// Reads a little-endian number of `width` bytes (1, 2 or 4) into `out` and
// moves lFilePos past it. 1 on success; 0 on a bad width or a short read, when
// lFilePos stays where it was.
int32_t tnefReadLE(TnefContainer* container, int32_t width, uint32_t* out);

// Moves lFilePos by `count` and seeks the input there. 1 when the seek
// succeeded; lFilePos has moved either way.
int32_t tnefSkip(TnefContainer* container, int32_t count);

// Appends a fresh zeroed object to the list and makes it current.
int32_t tnefAppendObject(TnefContainer* container);

// 1 when the low 16 bits of the sum of the bytes equal `expected`.
int32_t tnefChecksumOk(const uint8_t* bytes, uint32_t length, uint32_t expected);

// Handlers of TNEFREC_OEMCODEPAGE and TNEFREC_ATTACHTITLE; the input stands
// at the record's data.
int32_t tnefReadOemCodepage(TnefContainer* container, uint32_t recLen);
int32_t tnefGetAttTitle(TnefContainer* container, uint32_t recLen);

// Trace line of one record header; lFilePos stands at the record's data.
void tnefTraceRecord(TnefContainer* container, uint32_t recID, uint32_t recType,
                     uint32_t recLen);
