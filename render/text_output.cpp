// Writing literals and labelled lines in 8-bit or 16-bit form.
#include <string.h>

#include "reader/io.h"
#include "render/plain_text.h"

namespace {

// Characters widened per write; every literal of the header is shorter.
enum : size_t { kWideChunk = 32 };

}  // namespace

void tnefWriteBytes(IoObject* output, const void* bytes, int32_t count) {
    if (bytes == nullptr || count < 1) return;
    tnefIoWrite(output, bytes, static_cast<uint32_t>(count));
}

void tnefWriteLiteral(IoObject* output, const char* text, bool wide) {
    size_t length = strlen(text);
    if (!wide) {
        tnefWriteBytes(output, text, static_cast<int32_t>(length));
        return;
    }
    uint8_t units[2 * kWideChunk];
    for (size_t start = 0; start < length; start += kWideChunk) {
        size_t chunk = length - start < kWideChunk ? length - start : kWideChunk;
        for (size_t i = 0; i < chunk; ++i) {
            units[2 * i] = static_cast<uint8_t>(text[start + i]);
            units[2 * i + 1] = 0;
        }
        tnefWriteBytes(output, units, static_cast<int32_t>(2 * chunk));
    }
}

void tnefWriteLabelledLine(IoObject* output, const char* label, const void* text, int32_t count,
                           bool wide) {
    tnefWriteLiteral(output, label, wide);
    tnefWriteBytes(output, text, count);
    tnefWriteLiteral(output, kTnefLineEnd, wide);
}

int32_t tnefTrimWideZeros(const uint8_t* text, int32_t size) {
    while (size >= 2 && text[size - 1] == 0 && text[size - 2] == 0) size -= 2;
    return size;
}

int32_t tnefTrimNarrowZeros(const uint8_t* text, int32_t size) {
    while (size >= 1 && text[size - 1] == 0) size -= 1;
    return size;
}

MetaElement* tnefSummarySlot(TnefContainer* container, int32_t index) {
    if (index < 0 || index >= container->summaryCount || container->summary == nullptr) {
        return nullptr;
    }
    MetaElement* element = container->summary[index];
    if (element == nullptr || element->hasValue == 0) return nullptr;
    return element;
}
