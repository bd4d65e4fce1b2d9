// The form of the summary lines that have no element of their own (Sent and
// Importance, with what follows the latter): they are assembled as 8-bit
// text and widened when the document is in 16-bit form at that point.
#include "reader/memory.h"
#include "reader/text_conversions.h"
#include "render/plain_text.h"

bool tnefSummaryIsWide(const TnefContainer* container, CharsetId wanted, CharsetId message) {
    if (wanted == kCharsetUnicode) return true;
    if (wanted != kCharsetNone) return false;
    // Nothing was wanted: a 16-bit field met so far marks outputCharset, and
    // the line follows it unless the message names an 8-bit charset.
    return container->outputCharset == kCharsetUnicode &&
           (message == kCharsetNone || message == kCharsetUnicode);
}

void tnefWriteAssembledLine(TnefContainer* container, IoObject* output, const char* text,
                            int32_t count, bool wide) {
    if (!wide) {
        tnefWriteBytes(output, text, count);
        return;
    }
    int32_t wideCount = 0;
    uint8_t* widened = tnefCharsetToUnicode(container, reinterpret_cast<const uint8_t*>(text),
                                            count, &wideCount, kCharsetWindows1252);
    if (widened == nullptr) return;
    if (wideCount > 0) {
        tnefWriteBytes(output, widened, wideCount);
        container->charsetConverted = 1;
    }
    tnefFree(tnefHostAllocator(container), widened);
}
