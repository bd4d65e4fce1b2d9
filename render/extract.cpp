// Extraction of one subfile to an output.
#include "reader/operations.h"

int32_t tnefExtractSubfile(TnefContainer* container, int32_t index, IoObject* output,
                           ExtractRequest* request, ResultMemory* memory, uint32_t flags) {
    (void)output;
    (void)memory;
    (void)flags;
    if ((container->openFlags & kTnefOpenRootEntry) != 0) {
        if (index == 0) return kTnefOk;
        index -= 1;
    }
    container->outputCharset = 0;
    if (request->outputCharset != 0) {
        container->outputCharset = request->outputCharset;
        request->outputCharset = 0;
    }
    return kTnefNoObject;
}
