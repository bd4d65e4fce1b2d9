// One labelled line of a text summary slot: From, To, Cc, Bcc or Subject.
#include <string.h>

#include "reader/memory.h"
#include "reader/text_conversions.h"
#include "render/plain_message.h"
#include "render/plain_text.h"

namespace {

struct FieldLine {
    int32_t index;
    const char* name;   // the element's name must match it
    const char* label;  // ASCII; widened for the 16-bit form
};

constexpr FieldLine kFieldLines[] = {
    {0, "From", "From: "}, {2, "To", "To: "},           {3, "Cc", "Cc: "},
    {4, "Bcc", "Bcc: "},   {5, "Subject", "Subject: "},
};

const FieldLine* fieldLineOf(int32_t index) {
    for (const FieldLine& line : kFieldLines) {
        if (line.index == index) return &line;
    }
    return nullptr;
}

// A 16-bit text narrowed to `charset`; the line is written only when the
// conversion gave text.
void writeNarrowed(TnefContainer* container, IoObject* output, const char* label,
                   const uint8_t* text, int32_t size, CharsetId charset) {
    int32_t count = 0;
    uint8_t* narrow = tnefUnicodeToCharset(container, text, size, &count, charset);
    if (narrow == nullptr) return;
    if (count > 0) {
        tnefWriteLabelledLine(output, label, narrow, count, false);
        container->charsetConverted = 1;
    }
    tnefFree(tnefHostAllocator(container), narrow);
}

void writeWideField(TnefContainer* container, IoObject* output, const char* label,
                    MetaElement* element, CharsetId wanted, CharsetId message) {
    container->outputCharset = kCharsetUnicode;
    const uint8_t* text = tnefElementBytes(element);
    element->size = tnefTrimWideZeros(text, element->size);
    if (element->size < 1) return;
    if (wanted == kCharsetUnicode) {
        tnefWriteLabelledLine(output, label, text, element->size, true);
        container->charsetConverted = 1;
    } else if (wanted == kCharsetNone &&
               (message == kCharsetNone || message == kCharsetUnicode)) {
        tnefWriteLabelledLine(output, label, text, element->size, true);
    } else {
        writeNarrowed(container, output, label, text, element->size,
                      wanted == kCharsetNone ? message : wanted);
    }
}

void writeNarrowField(TnefContainer* container, IoObject* output, const char* label,
                      MetaElement* element, CharsetId wanted, CharsetId message) {
    const uint8_t* text = tnefElementBytes(element);
    element->size = tnefTrimNarrowZeros(text, element->size);
    if (element->size < 1) return;
    HostAllocator* allocator = tnefHostAllocator(container);
    if (wanted == kCharsetNone || message == kCharsetNone || wanted == message) {
        tnefWriteLabelledLine(output, label, text, element->size, false);
    } else if (wanted == kCharsetUnicode) {
        int32_t count = 0;
        uint8_t* widened = tnefCharsetToUnicode(container, text, element->size, &count, message);
        if (widened == nullptr) return;
        if (count > 0) {
            tnefWriteLabelledLine(output, label, widened, count, true);
            container->charsetConverted = 1;
        }
        tnefFree(allocator, widened);
    } else {
        int32_t count = 0;
        uint8_t* recoded = tnefRecodeText(container, text, element->size, message, wanted, &count);
        if (recoded == nullptr) return;
        tnefWriteLabelledLine(output, label, recoded, count, false);
        tnefFree(allocator, recoded);
    }
}

}  // namespace

int32_t tnefWriteSummaryField(TnefContainer* container, TnefObject* message, int32_t index,
                              CharsetId wanted, IoObject* output) {
    const FieldLine* line = fieldLineOf(index);
    MetaElement* element = tnefSummarySlot(container, index);
    if (line == nullptr || element == nullptr || element->value == 0 || element->size < 1 ||
        element->name == nullptr || strcmp(element->name, line->name) != 0) {
        return kTnefOk;
    }
    const CharsetId messageCharset = tnefMessageCharset(message);
    if (element->type == kElementText16) {
        writeWideField(container, output, line->label, element, wanted, messageCharset);
    } else if (element->type == kElementText8) {
        writeNarrowField(container, output, line->label, element, wanted, messageCharset);
    }
    return kTnefOk;
}
