// A message whose body goes out as stored HTML or as RTF inflated from its
// compressed form, behind the summary header of the same kind.
#include "render/stored_body.h"

#include "reader/io.h"
#include "reader/memory.h"
#include "render/html_summary_field.h"
#include "render/raw_copy.h"
#include "render/rtf_decompress.h"
#include "render/rtf_summary_field.h"
#include "render/summary_line.h"
#include "stream/property_access.h"

namespace {

bool locate(TnefObject* message, uint32_t tag, TnefPropLocation* location) {
    return tnefGetPropertyLocation(message, tag, location) == kTnefOk && location->length >= 1;
}

// True when the text opens an RTF document: "{\rtf1", in any case.
bool opensRtfDocument(const uint8_t* text, uint32_t size) {
    static const char kOpening[] = "{\\rtf1";
    if (size < sizeof kOpening - 1) return false;
    for (uint32_t i = 0; i < sizeof kOpening - 1; ++i) {
        uint8_t byte = text[i];
        if (byte >= 'A' && byte <= 'Z') byte = static_cast<uint8_t>(byte - 'A' + 'a');
        if (byte != static_cast<uint8_t>(kOpening[i])) return false;
    }
    return true;
}

// The RTF body: read whole, inflated, and written without its opening brace
// when a header stands before it, so that the header's open group and the
// body's closing brace make one document.
void writeRtfBody(TnefContainer* container, TnefObject* message, IoObject* output) {
    TnefPropLocation location{};
    if (!locate(message, kTagRtfCompressed, &location)) return;
    HostAllocator* allocator = tnefHostAllocator(container);
    auto* stored = static_cast<uint8_t*>(tnefAlloc(allocator, location.length));
    if (stored == nullptr) return;
    tnefIoSeek(container->io, location.filePos, kSeekSet);
    int32_t got = tnefIoRead(container->io, stored, static_cast<uint32_t>(location.length));
    if (got >= 1) {
        uint8_t* text = nullptr;
        uint32_t textSize = 0;
        if (tnefDecompressRtf(allocator, stored, got, &text, &textSize) == kTnefOk && text != nullptr &&
            textSize > 0) {
            int64_t position = output->tell != nullptr ? output->tell(output) : 0;
            if (position > 0 && opensRtfDocument(text, textSize)) {
                tnefIoWrite(output, text + 1, textSize - 1);
            } else {
                tnefIoWrite(output, text, textSize);
            }
        }
        tnefFree(allocator, text);
    }
    allocator->free(allocator, stored);
}

}  // namespace

int32_t tnefWriteStoredBody(TnefContainer* container, TnefObject* message, BodyForm form,
                            IoObject* output) {
    if (container->omitSummaryHeader == 0) {
        for (int32_t index = 0; index < kSummaryFieldCount; ++index) {
            if (form == kBodyHtml) {
                tnefWriteHtmlSummaryField(container, message, index, output);
            } else {
                tnefWriteRtfSummaryField(container, message, index, output);
            }
        }
    }
    if (form == kBodyHtml) {
        TnefPropLocation location{};
        if (locate(message, kTagBodyHtml, &location) || locate(message, kTagHtml, &location)) {
            tnefCopyInputRange(container, location.filePos, location.length, output);
        }
    } else if (form == kBodyRtf) {
        writeRtfBody(container, message, output);
    }
    return kTnefOk;
}
