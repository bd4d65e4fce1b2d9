#include "render/summary_line.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "reader/io.h"
#include "render/plain_message.h"
#include "render/plain_text.h"
#include "stream/message_summary.h"

namespace {

// Room for one formatted piece: a label, a word or date, a line end and at
// most the closing text of the HTML document.
enum : int32_t { kPieceSize = 256 };

int32_t formatPiece(char* piece, const char* format, va_list args) {
    int length = vsnprintf(piece, kPieceSize, format, args);
    if (length < 0) return 0;
    return length < kPieceSize ? length : kPieceSize - 1;
}

}  // namespace

void tnefLineStart(SummaryLine* line, IoObject* output) {
    line->output = output;
    line->count = 0;
}

void tnefLineAppend(SummaryLine* line, const void* bytes, int32_t count) {
    if (count < 1) return;
    if (count > kSummaryLineSize - line->count) {
        tnefLineFlush(line);
        if (count > kSummaryLineSize) {
            tnefWriteRaw(line->output, bytes, count);
            return;
        }
    }
    memcpy(line->bytes + line->count, bytes, static_cast<size_t>(count));
    line->count += count;
}

void tnefLineAppendText(SummaryLine* line, const char* text) {
    tnefLineAppend(line, text, static_cast<int32_t>(strlen(text)));
}

void tnefLineAppendf(SummaryLine* line, const char* format, ...) {
    char piece[kPieceSize];
    va_list args;
    va_start(args, format);
    int32_t length = formatPiece(piece, format, args);
    va_end(args);
    tnefLineAppend(line, piece, length);
}

void tnefLineFlush(SummaryLine* line) {
    tnefWriteRaw(line->output, line->bytes, line->count);
    line->count = 0;
}

void tnefLineFlushIfFull(SummaryLine* line) {
    if (line->count >= kSummaryLineFlushAt) tnefLineFlush(line);
}

void tnefWriteFormatted(IoObject* output, const char* format, ...) {
    char piece[kPieceSize];
    va_list args;
    va_start(args, format);
    int32_t length = formatPiece(piece, format, args);
    va_end(args);
    tnefWriteRaw(output, piece, length);
}

void tnefWriteRaw(IoObject* output, const void* bytes, int32_t count) {
    if (bytes == nullptr || count < 1) return;
    tnefIoWrite(output, bytes, static_cast<uint32_t>(count));
}

void tnefWriteText(IoObject* output, const char* text) {
    tnefWriteRaw(output, text, static_cast<int32_t>(strlen(text)));
}

MetaElement* tnefSummaryElement(TnefContainer* container, int32_t index) {
    if (index < 0 || index >= container->summaryCount || container->summary == nullptr) {
        return nullptr;
    }
    return container->summary[index];
}

MetaElement* tnefSummaryTextElement(TnefContainer* container, int32_t index) {
    if (index < 0 || index >= kSummarySlots) return nullptr;
    MetaElement* element = tnefSummaryElement(container, index);
    if (element == nullptr || element->hasValue == 0 || element->value == 0 || element->size <= 0 ||
        element->name == nullptr || strcmp(element->name, summaryRows[index].name) != 0) {
        return nullptr;
    }
    return element;
}

int32_t tnefTrimWideElement(MetaElement* element) {
    element->size = tnefTrimWideZeros(tnefTextBytes(element), element->size);
    return element->size;
}

int32_t tnefTrimNarrowElement(MetaElement* element) {
    element->size = tnefTrimNarrowZeros(tnefTextBytes(element), element->size);
    return element->size;
}

bool tnefSummarySentText(TnefContainer* container, char* text) {
    text[0] = '\0';
    MetaElement* element = tnefSummaryElement(container, kSummaryFieldSent);
    if (element == nullptr || element->hasValue == 0 || element->type != kElementTime ||
        element->value == 0) {
        return false;
    }
    tnefFormatFileTime(tnefTextBytes(element), text);
    return text[0] != '\0';
}

const char* tnefSummaryImportanceWord(TnefContainer* container) {
    MetaElement* element = tnefSummaryElement(container, kSummaryFieldImportance);
    if (element == nullptr || element->hasValue == 0 || element->type != kElementInteger) {
        return nullptr;
    }
    switch (static_cast<int32_t>(element->value)) {
        case 0: return "Low";
        case 2: return "High";
        default: return "Normal";
    }
}
