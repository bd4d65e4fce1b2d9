// The message's recipient table, decoded into the To, Cc and Bcc lists.
#pragma once

#include "reader/host.h"

// Reads the table noted in the message's recipTablePos and recipTableSize
// and fills summary slots 2, 3 and 4 of the container.
int32_t tnefBuildRecipientLists(TnefContainer* container, HostAllocator* allocator,
                                TnefObject* message);

// 1 when the text holds an at sign, in 8-bit form or, for type 31, in 16-bit
// form.
int32_t tnefHasAtSign(const uint8_t* text, int32_t length, uint32_t type);
