// The message subfile as plain text: a summary header of labelled lines,
// then the text body, each piece in 8-bit or 16-bit form as the wanted and
// the message charsets decide.
#pragma once

#include "reader/host.h"

// Room for the date text of tnefFormatFileTime, terminator included.
enum : int32_t { kTnefDateTextSize = 100 };

// The summary header (unless omitSummaryHeader is set), then the body read
// from the input at the message's dataPos. 4 when the input can't be
// positioned at the body, else 0: pieces that can't be converted or
// allocated are dropped.
int32_t tnefWritePlainMessage(TnefContainer* container, TnefObject* message, IoObject* output);

// From, Sent, To, Cc, Bcc, Subject, Importance and Attachments lines and
// the closing pair. Always 0.
int32_t tnefWriteTextSummary(TnefContainer* container, TnefObject* message, IoObject* output);

// One labelled line of summary slot 0, 2, 3, 4 or 5, when the slot holds
// text. `wanted` is the charset the host asked for. Always 0.
int32_t tnefWriteSummaryField(TnefContainer* container, TnefObject* message, int32_t index,
                              CharsetId wanted, IoObject* output);

// The FILETIME at `fileTime` (8 bytes, little-endian) as local date text
// "Www Mmm dd hh:mm:ss yyyy" in `text`, which holds kTnefDateTextSize bytes;
// an empty text when the time can't be broken down. Returns `text`.
char* tnefFormatFileTime(const uint8_t* fileTime, char* text);
