// The message subfile in text form: the summary header, then the body of
// the message's text record, read in one piece and recoded when the host
// wants a charset other than the message's.
#include "reader/io.h"
#include "reader/memory.h"
#include "render/plain_message.h"
#include "render/plain_text.h"

namespace {

// Reads the whole body into a fresh buffer; null when it can't be had.
uint8_t* readBody(TnefContainer* container, const TnefObject* message, int32_t* count) {
    HostAllocator* allocator = tnefHostAllocator(container);
    auto* body = static_cast<uint8_t*>(tnefAlloc(allocator, message->dataSize));
    if (body == nullptr) return nullptr;
    int32_t got = tnefIoRead(container->io, body, static_cast<uint32_t>(message->dataSize));
    if (got < 1 || got > message->dataSize) {
        allocator->free(allocator, body);
        return nullptr;
    }
    *count = got;
    return body;
}

}  // namespace

int32_t tnefWritePlainMessage(TnefContainer* container, TnefObject* message, IoObject* output) {
    if (container->omitSummaryHeader == 0) tnefWriteTextSummary(container, message, output);
    if (message == nullptr || message->dataSize == 0) return kTnefOk;
    if (tnefIoSeek(container->io, message->dataPos, kSeekSet) == 0) return kTnefStreamFailure;

    const CharsetId messageCharset = message->charset;
    const CharsetId wanted = container->outputCharset;
    int32_t count = 0;
    uint8_t* body = readBody(container, message, &count);
    if (body == nullptr) return kTnefOk;
    if (wanted != kCharsetNone && messageCharset != kCharsetNone && wanted != messageCharset) {
        int32_t recodedCount = 0;
        uint8_t* recoded =
            tnefRecodeText(container, body, count, messageCharset, wanted, &recodedCount);
        tnefWriteBytes(output, recoded, recodedCount);
        tnefFree(tnefHostAllocator(container), recoded);
    } else {
        tnefWriteBytes(output, body, count);
    }
    tnefFree(tnefHostAllocator(container), body);
    return kTnefOk;
}
