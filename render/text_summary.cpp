// The summary header of the text form: From, Sent, To, Cc, Bcc, Subject,
// Importance, Attachments, then a closing pair of line ends.
#include <string.h>

#include "render/plain_message.h"
#include "render/plain_text.h"
#include "stream/message_summary.h"

namespace {

// Room for the Sent line and for the Importance line with its extra line
// end; both are assembled as 8-bit text before their form is chosen.
enum : int32_t { kAssembledLineSize = 1024 };

// Appends an ASCII text to an assembled line, as far as it fits.
void append(char* line, int32_t* used, const char* text) {
    size_t length = strlen(text);
    size_t room = static_cast<size_t>(kAssembledLineSize - *used);
    if (length > room) length = room;
    memcpy(line + *used, text, length);
    *used += static_cast<int32_t>(length);
}

void writeSentLine(TnefContainer* container, IoObject* output, CharsetId wanted,
                   CharsetId message) {
    const MetaElement* sent = tnefSummarySlot(container, kSummarySent);
    if (sent == nullptr || sent->type != kElementTime || sent->value == 0) return;
    char date[kTnefDateTextSize];
    tnefFormatFileTime(tnefElementBytes(sent), date);
    char line[kAssembledLineSize];
    int32_t used = 0;
    append(line, &used, "Sent: ");
    append(line, &used, date);
    append(line, &used, kTnefLineEnd);
    tnefWriteAssembledLine(container, output, line, used,
                           tnefSummaryIsWide(container, wanted, message));
}

const char* importanceWord(TnefContainer* container) {
    const MetaElement* importance = tnefSummarySlot(container, kSummaryPriority);
    if (importance == nullptr || importance->type != kElementInteger) return "Normal";
    switch (static_cast<int32_t>(importance->value)) {
        case 0: return "Low";
        case 2: return "High";
        default: return "Normal";
    }
}

// The Importance line, and the empty line that stands in for the
// Attachments line of a message without attachments.
void writeImportanceLine(TnefContainer* container, IoObject* output, CharsetId wanted,
                         CharsetId message) {
    char line[kAssembledLineSize];
    int32_t used = 0;
    append(line, &used, "Importance: ");
    append(line, &used, importanceWord(container));
    append(line, &used, kTnefLineEnd);
    if (container->objectCount < 2) append(line, &used, kTnefLineEnd);
    tnefWriteAssembledLine(container, output, line, used,
                           tnefSummaryIsWide(container, wanted, message));
}

}  // namespace

int32_t tnefWriteTextSummary(TnefContainer* container, TnefObject* message, IoObject* output) {
    const CharsetId wanted = container->outputCharset;
    const CharsetId messageCharset = tnefMessageCharset(message);

    tnefWriteSummaryField(container, message, kSummaryFrom, wanted, output);
    writeSentLine(container, output, wanted, messageCharset);
    for (int32_t index = kSummaryTo; index <= kSummarySubject; ++index) {
        tnefWriteSummaryField(container, message, index, wanted, output);
    }
    writeImportanceLine(container, output, wanted, messageCharset);
    const bool wideClosing = tnefWriteAttachmentNames(container, message, wanted, output);
    tnefWriteLiteral(output, kTnefLineEnd, wideClosing);
    tnefWriteLiteral(output, kTnefLineEnd, wideClosing);

    // The body is rendered for the charset that was asked for, whatever
    // the fields turned out to be.
    container->outputCharset = wanted;
    return kTnefOk;
}
