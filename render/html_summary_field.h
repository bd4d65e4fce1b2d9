// The summary header of a message rendered with its HTML body: a small HTML
// document of its own that names the charset and shows From, Sent, To, Cc,
// Bcc, Subject, Importance and Attachments, closed before the body begins.
#pragma once

#include "reader/host.h"

// Writes line `index` (0 to 7, see kSummaryField*) of the header, index 0
// with the head of the document in front and index 7 with its closing text
// behind. A line whose element is missing or unusable is left out. Always 0.
int32_t tnefWriteHtmlSummaryField(TnefContainer* container, TnefObject* object, int32_t index,
                                  IoObject* output);
