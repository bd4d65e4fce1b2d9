// The message's recipient table, decoded into the To, Cc and Bcc lists.
#pragma once

#include "reader/host.h"

// Reads the table noted in the message's recipTablePos and recipTableSize
// and fills summary slots 2, 3 and 4 of the container, whose summary array
// exists already. 0; 2 when memory is refused; 4 when nothing could be read
// or a value count is above 65535.
int32_t tnefBuildRecipientLists(TnefContainer* container, HostAllocator* allocator,
                                TnefObject* message);

// 1 when the text holds an at sign: for type 31 (multi-value flag removed) a
// 40 00 pair before the first 00 00 pair, for any other type a byte 40 before
// the first 00 byte; never beyond `length`.
int32_t tnefHasAtSign(const uint8_t* text, int32_t length, uint32_t type);
