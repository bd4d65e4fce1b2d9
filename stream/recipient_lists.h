// The To, Cc and Bcc lists that the recipient table is assembled into: one
// text buffer each, grown row by row, and handed over as summary elements.
#pragma once

#include "reader/host.h"

enum : int32_t { kRecipientTo = 0, kRecipientCc = 1, kRecipientBcc = 2, kRecipientLists = 3 };

// A name or address captured from the table: a pointer into the table's
// bytes, its length and its MAPI type (multi-value flag removed).
struct TnefRecipientText {
    const uint8_t* bytes;  // null: none
    int32_t length;
    uint32_t type;
};

struct TnefRecipientList {
    uint8_t* text;  // null until a row creates the list
    int32_t capacity;
    int32_t used;  // bytes of text, the terminator behind them not counted
};

struct TnefRecipientLists {
    HostAllocator* allocator;
    int32_t growth;      // spare room of every allocation
    int32_t wide;        // set once a 16-bit value has been met in the table
    int32_t listsWide;   // the lists' bytes are in 16-bit form
    TnefRecipientList list[kRecipientLists];
};

// The list of a recipient type: 2 Cc, 3 Bcc, anything else To.
int32_t tnefRecipientListOf(uint32_t recipientType);

// Spare room of the lists of a table of `rowCount` rows: 1024 for every
// started ten rows. Saturating.
int32_t tnefRecipientGrowth(int32_t rowCount);

// Appends one row to list `which` in the form the wide flag gives: the
// separator when the list holds an entry already, then "name" <address>.
// 0, or 2 when a buffer is refused; the lists are then only fit for release.
int32_t tnefAppendRecipient(TnefRecipientLists* lists, int32_t which,
                            const TnefRecipientText& name, const TnefRecipientText& address);

// Makes the elements of summary slots 2, 3 and 4 from the lists, passing
// each buffer on to its element, and marks the message 16-bit when the table
// was. Buffers that no element took stay in the lists.
int32_t tnefPublishRecipientLists(TnefContainer* container, TnefRecipientLists* lists,
                                  TnefObject* message);

// Releases the buffers still held by the lists.
void tnefReleaseRecipientLists(TnefRecipientLists* lists);
