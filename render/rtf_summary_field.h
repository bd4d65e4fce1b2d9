// The summary header of a message rendered with its RTF body: the opening
// of an RTF document and the lines From, Sent, To, Cc, Bcc, Subject,
// Importance and Attachments. The document's group is left open; the body
// that follows, without its own opening brace, closes it.
#pragma once

#include "reader/host.h"

// Writes line `index` (0 to 7, see kSummaryField*) of the header, index 0
// with the opening of the document in front. Text goes out in the
// message's charset, or the host's default when the message names none,
// with \u numbers where that charset needs them. A line whose element is
// missing or unusable is left out. Always 0.
int32_t tnefWriteRtfSummaryField(TnefContainer* container, TnefObject* object, int32_t index,
                                 IoObject* output);
