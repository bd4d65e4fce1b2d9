// What the HTML and the RTF summary headers have in common: the labels of
// their eight lines, a line buffer that goes to the output in pieces, the
// tests that decide whether a summary element gives a line, and the walk
// over the names of the attachments.
#pragma once

#include "reader/host.h"

// The eight lines of a summary header, by field index. Indices 0 to 6 are
// also the slots of the MessageSummary; the Attachments line has no slot.
enum : int32_t {
    kSummaryFieldFrom = 0,
    kSummaryFieldSent = 1,
    kSummaryFieldTo = 2,
    kSummaryFieldCc = 3,
    kSummaryFieldBcc = 4,
    kSummaryFieldSubject = 5,
    kSummaryFieldImportance = 6,
    kSummaryFieldAttachments = 7,
    kSummaryFieldCount = 8,
};

// The label of each line, as the reader sees it in front of the value.
inline constexpr const char* kSummaryLabels[kSummaryFieldCount] = {
    "From: ", "Sent: ", "To: ", "Cc: ", "Bcc: ", "Subject: ", "Importance: ", "Attachments: ",
};

// The separator between two attachment names.
inline constexpr const char* kSummaryNameSeparator = "; ";

// --- The line buffer ---------------------------------------------------------

// A line is assembled in a 4096-byte buffer and written when it is done, or
// earlier, as soon as 3996 bytes wait: the largest piece that one character
// adds is well below the 100 bytes of margin, so a value of any length goes
// out without a break.
enum : int32_t {
    kSummaryLineSize = 4096,
    kSummaryLineFlushAt = 3996,
};

struct SummaryLine {
    IoObject* output;
    int32_t count;  // bytes waiting
    char bytes[kSummaryLineSize];
};

void tnefLineStart(SummaryLine* line, IoObject* output);
// Adds bytes; should they not fit, what waits is written first.
void tnefLineAppend(SummaryLine* line, const void* bytes, int32_t count);
void tnefLineAppendText(SummaryLine* line, const char* text);
void tnefLineAppendf(SummaryLine* line, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
// Writes what waits and starts again at 0.
void tnefLineFlush(SummaryLine* line);
// The same, but only once the buffer has reached the flush mark.
void tnefLineFlushIfFull(SummaryLine* line);
// Forgets what waits, without writing it.
inline void tnefLineDiscard(SummaryLine* line) { line->count = 0; }

// Writes a short formatted piece straight to the output.
void tnefWriteFormatted(IoObject* output, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
// Writes `count` bytes; nothing when `count` is below 1.
void tnefWriteRaw(IoObject* output, const void* bytes, int32_t count);
// Writes a terminated text without its terminator.
void tnefWriteText(IoObject* output, const char* text);

// --- The summary elements ----------------------------------------------------

// Slot `index` of the message summary, or null when the summary has no such
// slot or it is empty.
MetaElement* tnefSummaryElement(TnefContainer* container, int32_t index);

// The element of a text line (From, To, Cc, Bcc, Subject): it has a value
// with bytes behind it, a size above 0 and the name of its summary row.
// Null when the line has no element; its type is the caller's to test.
MetaElement* tnefSummaryTextElement(TnefContainer* container, int32_t index);

// The bytes of a text element.
inline const uint8_t* tnefTextBytes(const MetaElement* element) {
    return reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(element->value));
}

// Take the trailing zero units (16-bit text) or bytes (8-bit text) off the
// size of an element, in place: the shortened size stays in the element.
// The new size.
int32_t tnefTrimWideElement(MetaElement* element);
int32_t tnefTrimNarrowElement(MetaElement* element);

// The date text of the Sent line in `text`, which holds kTnefDateTextSize
// bytes, when slot 1 holds a time that gives a text.
bool tnefSummarySentText(TnefContainer* container, char* text);

// The word of the Importance line, or null when slot 6 holds no number:
// "Low" for 0, "High" for 2, "Normal" for anything else.
const char* tnefSummaryImportanceWord(TnefContainer* container);

// --- The attachment names ----------------------------------------------------

enum class SummaryNameForm : int32_t {
    kWide,      // PR_ATTACH_LONG_FILENAME as 16-bit text
    kNarrow,    // PR_ATTACH_LONG_FILENAME as 8-bit text
    kVerbatim,  // the attachment's title, or the generated "zdN.tmp": written as they are
};

struct SummaryAttachmentName {
    SummaryNameForm form;
    const uint8_t* bytes;
    int32_t size;  // of a long file name: above 0, trailing zeros taken off
    bool first;    // no name went before it: it takes the label, not the separator
};

typedef void (*SummaryNameWriter)(void* state, const SummaryAttachmentName* name);

// Walks the object list and hands each attachment's name to `write`, from
// the first source that applies: the 16-bit long file name, the 8-bit long
// file name, the title, or "zdN.tmp" with N the attachment's place in the
// list (the message is 0). A long file name of zeros alone gives no name,
// and no other source is tried for that attachment.
void tnefWalkAttachmentNames(TnefContainer* container, SummaryNameWriter write, void* state);
