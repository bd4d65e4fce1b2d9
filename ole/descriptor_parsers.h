// Readers of the small descriptor streams an OLE storage keeps beside its
// payload: CompObj, Ole10Native, AttachDesc and the Ole stream of a linked
// object. Each works on the first `count` bytes of a stream held in memory
// (never touching a byte at or past `count`) and tells the extraction where
// the payload starts, how long it is and what the subfile is called.
//
// Every function returns a status: kTnefOk, kTnefNoName for a descriptor
// that doesn't have the expected shape, kTnefNoMemory when the allocator
// refuses. Failures write one fixed line through the host's hostLogMessage.
// What a parser stored before failing stays stored: callers look at the
// stored values rather than at the status.
//
// A string `target` is the address of a pointer that holds null or an
// earlier string from the same allocator; a new string replaces and frees it.
#pragma once

#include <stdint.h>

#include "reader/host.h"

// CompObj: the user type name at offset 32 chooses the payload's start
// offset in the main stream (-1: not settled here, read the next descriptor).
int32_t oleProcessCompObjStream(HostContext* host, const uint8_t* buffer, int32_t count,
                                int32_t* startOffset);

// Ole10Native: a bitmap starts at 4 and runs to the end of what was read; a
// package names the subfile and gives the payload's offset and size.
int32_t oleProcessOle10NativeStream(HostContext* host, HostAllocator* allocator,
                                    const uint8_t* buffer, int32_t count, int32_t* startOffset,
                                    int32_t* payloadSize, char** target);

// Ole stream of a linked object: the path of the linked file, found in
// front of the `hits`-th 0xAD 0xDE marker, copied into `target` and, when
// given, into `secondTarget` as a separate string.
int32_t oleProcessOleStream(HostContext* host, HostAllocator* allocator, const uint8_t* buffer,
                            int32_t count, int32_t hits, char** target, char** secondTarget);

// AttachDesc: the name between the 0x0D at offset 4 and the next 0x0D, with
// control bytes and path characters left out. Logs nothing; only a refused
// allocation is a failure, and it leaves `target` null.
int32_t oleProcessAttachDescStream(HostContext* host, HostAllocator* allocator,
                                   const uint8_t* buffer, int32_t count, char** target);

// A copy of the terminated `source` into `target`. On a refusal `target`
// keeps its string and two lines are logged: the failure and `source`.
int32_t oleProcessString(HostContext* host, HostAllocator* allocator, const char* source,
                         char** target);

// Replaces, one for one, each byte of `text` that can't stand in a file name
// and turns '&' into '$'. Returns 1 if any byte changed, else 0 (also for a
// null `text`).
int32_t oleCleanFileName(char* text, int32_t length);

// 1 if the byte may stand in a file name: printable ASCII except " * / : < > ? |.
int32_t oleIsValidFileNameChar(uint8_t byte);
