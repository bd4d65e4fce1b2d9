// The two records whose bytes the scanner keeps: the OEM code page of the
// message and the title of an attachment.
#include <string.h>

#include "reader/bytes.h"
#include "reader/io.h"
#include "reader/memory.h"
#include "reader/trace.h"
#include "stream/codepage.h"
#include "stream/scanner.h"

namespace {

// Passes over the data and checksum of a record whose bytes are not kept.
int32_t skipRecord(TnefContainer* container, uint32_t recLen, int32_t status) {
    tnefSkip(container, static_cast<int32_t>(recLen + 2));
    return status;
}

}  // namespace

int32_t tnefReadOemCodepage(TnefContainer* container, uint32_t recLen) {
    TnefObject* object = container->currentObject;
    if (object == nullptr) return skipRecord(container, recLen, kTnefOk);
    HostAllocator* allocator = tnefHostAllocator(container);
    auto* bytes = static_cast<uint8_t*>(allocator->alloc(allocator, recLen));
    if (bytes == nullptr) return skipRecord(container, recLen, kTnefNoMemory);

    int32_t status = kTnefOk;
    uint32_t checksum = 0;
    if (static_cast<uint32_t>(tnefIoRead(container->io, bytes, recLen)) != recLen) {
        status = kTnefStreamFailure;
    } else {
        container->lFilePos += recLen;
        if (tnefReadLE(container, 2, &checksum) == 0 ||
            tnefChecksumOk(bytes, recLen, checksum) == 0) {
            status = kTnefStreamFailure;
        } else {
            uint32_t codePage = recLen >= 4 ? tnefLe32(bytes) : 0;
            object->charset = tnefCodePageToCharset(codePage);
        }
    }
    allocator->free(allocator, bytes);
    return status;
}

int32_t tnefGetAttTitle(TnefContainer* container, uint32_t recLen) {
    TnefObject* object = container->currentObject;
    if (object == nullptr || object->attachTitle != nullptr || recLen == 0) {
        return skipRecord(container, recLen, kTnefOk);
    }
    HostAllocator* allocator = tnefHostAllocator(container);
    auto* title = static_cast<char*>(allocator->alloc(allocator, static_cast<size_t>(recLen) + 2));
    if (title == nullptr) return skipRecord(container, recLen, kTnefNoMemory);

    // Zeroed first: after a short read the title ends at the bytes that came,
    // never showing bytes nobody wrote. The two zeros behind the text end it
    // both as 8-bit and as 16-bit text.
    memset(title, 0, static_cast<size_t>(recLen) + 2);
    tnefIoRead(container->io, title, recLen);
    container->lFilePos += recLen;

    uint32_t checksum = 0;
    if (tnefReadLE(container, 2, &checksum) == 0) {
        tnefTracef(container, "tnefGetAttTitle: error read checksum");
    }
    if (tnefChecksumOk(reinterpret_cast<uint8_t*>(title), recLen, checksum) == 0) {
        tnefTracef(container, "tnefGetAttTitle: error check checksum");
    }
    object->attachTitle = title;
    return kTnefOk;
}
