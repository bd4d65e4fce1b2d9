// One `"name" <address>` entry: the form of the sender text and of each
// recipient in a To, Cc or Bcc list. It is written either as 8-bit bytes or
// as 16-bit little-endian text, where every delimiter is a byte pair.
#pragma once

#include "reader/host.h"

// A name or an address on its way into an entry.
struct TnefEntryText {
    const uint8_t* bytes;  // null: there is no such text
    int32_t measured;      // bytes of `bytes` that go into the entry
    int32_t widen;         // 1: 8-bit bytes, each written as a 16-bit unit
};

// Measured length of a text: in 8-bit form the bytes before the first 00
// byte, at most `length`; in 16-bit form the bytes before the first 00 00
// pair at an even offset, an even number that leaves out a lone last byte.
int32_t tnefMeasureText(const uint8_t* bytes, int32_t length, bool wide);

// A text prepared for an entry of the given form. With `widen`, its bytes
// are 8-bit text, measured as such and each written as a 16-bit unit of a
// 16-bit entry; otherwise the text is measured and taken in the entry's own
// form.
TnefEntryText tnefEntryText(const uint8_t* bytes, int32_t length, bool wide, bool widen);

// Bytes a text takes inside an entry; 0 for a missing text. Saturating.
int32_t tnefEntryTextSize(const TnefEntryText& text);

// Writes one delimiter character at out + *used: the byte, followed by 00 in
// 16-bit form.
void tnefPutDelimiter(uint8_t* out, int32_t* used, uint8_t character, bool wide);

// Writes the pieces of an entry at out + *used: the name in quotes when there
// is one, a blank when there are both, the address in angle brackets when
// there is one, then a terminator that *used does not count. The caller has
// made room for the texts and 12 more bytes.
void tnefPutEntry(uint8_t* out, int32_t* used, const TnefEntryText& name,
                  const TnefEntryText& address, bool wide);
