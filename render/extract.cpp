// Extraction of one subfile to an output the host supplies: the message is
// rendered, an OLE attachment unpacked, any other attachment copied as is.
#include "ole/ole_branch.h"
#include "reader/io.h"
#include "reader/operations.h"
#include "render/body_form.h"
#include "render/raw_copy.h"

namespace {

// Moves the per-extract settings into the container.
void takeSettings(TnefContainer* container, ExtractRequest* request, uint32_t flags) {
    container->omitSummaryHeader = (flags & kTnefExtractOmitHeader) != 0 ? 1 : 0;
    container->charsetConverted = 0;
    container->outputCharset = kCharsetNone;
    if (request->outputCharset != kCharsetNone) {
        container->outputCharset = request->outputCharset;
        request->outputCharset = kCharsetNone;
    }
    container->preferStoredBody = (flags & kTnefExtractPreferStoredBody) != 0 ? 1 : 0;
}

bool outputUsable(IoObject* output) {
    if (output->open == nullptr || output->open(output) == 0) return false;
    return output->close != nullptr && output->seek != nullptr && output->write != nullptr;
}

// The closing steps every completed extraction ends with.
int32_t finish(TnefContainer* container, IoObject* output, ExtractRequest* request,
               int32_t status) {
    if (container->charsetConverted != 0) request->resultFlags |= kTnefResultCharsetConverted;
    output->seek(output, 0, kSeekEnd);
    output->size = output->tell != nullptr ? output->tell(output) : 0;
    output->close(output);
    return status;
}

}  // namespace

int32_t tnefExtractSubfile(TnefContainer* container, int32_t index, IoObject* output,
                           ExtractRequest* request, ResultMemory* memory, uint32_t flags) {
    HostAllocator* allocator = memory->allocator;
    if ((container->openFlags & kTnefOpenRootEntry) != 0) {
        if (index == 0) return kTnefOk;
        index -= 1;
    }
    takeSettings(container, request, flags);
    TnefObject* object = tnefObjectAt(container, index);
    if (object == nullptr) return kTnefNoObject;
    if (!outputUsable(output)) return kTnefOutputUnusable;
    output->seek(output, 0, kSeekSet);

    int32_t status = kTnefOk;
    if (object->kind == kObjectMessage) {
        status = tnefExtractMessage(container, object, output);
    } else if (object->kind == kObjectAttachment && object->attachKind == kAttachOle) {
        bool reachedExtraction = false;
        status = tnefExtractOleAttachment(container, allocator, object, output, request,
                                          &reachedExtraction);
        if (!reachedExtraction) return status;
    } else if (object->kind == kObjectAttachment) {
        tnefCopyInputRange(container, object->dataPos, object->dataSize, output);
    }
    return finish(container, output, request, status);
}
