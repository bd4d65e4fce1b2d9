// The record loop: signature, then one record header after another, each
// record handled by its level and identifier and passed over whole.
#include "stream/scanner.h"

#include "reader/bytes.h"
#include "reader/io.h"
#include "reader/trace.h"
#include "stream/property_block.h"
#include "stream/records.h"
#include "stream/settle.h"

namespace {

// Where a record's data starts, its length is noted and the record skipped.
void noteRange(TnefContainer* container, int64_t* pos, int32_t* size, uint32_t recLen) {
    *pos = container->lFilePos;
    *size = static_cast<int32_t>(recLen);
    tnefSkip(container, static_cast<int32_t>(recLen + 2));
}

int32_t handleMessageRecord(TnefContainer* container, uint32_t recID, uint32_t recLen) {
    if (container->objectHead == nullptr) {
        int32_t status = tnefAppendObject(container);
        if (status != kTnefOk) return status;
        container->currentObject->kind = kObjectMessage;
        container->currentObject->parentIndex = -1;
    }
    TnefObject* object = container->currentObject;
    // Once an attachment has been opened, message-level records belong to
    // nothing and are passed over.
    if (object->kind == kObjectAttachment) {
        tnefSkip(container, static_cast<int32_t>(recLen + 2));
        return kTnefOk;
    }
    switch (recID) {
        case TNEFREC_BODY:
            noteRange(container, &object->dataPos, &object->dataSize, recLen);
            return kTnefOk;
        case TNEFREC_MAPIPROPS:
            return tnefReadPropertyBlock(container, recLen);
        case TNEFREC_RECIPTABLE:
            noteRange(container, &object->recipTablePos, &object->recipTableSize, recLen);
            return kTnefOk;
        case TNEFREC_OEMCODEPAGE:
            tnefReadOemCodepage(container, recLen);
            return kTnefOk;
        default:
            tnefSkip(container, static_cast<int32_t>(recLen + 2));
            return kTnefOk;
    }
}

int32_t handleAttachmentRecord(TnefContainer* container, uint32_t recID, uint32_t recLen) {
    switch (recID) {
        case TNEFREC_ATTACHRENDDATA: {
            int32_t status = tnefAppendObject(container);
            if (status != kTnefOk) return status;
            container->currentObject->kind = kObjectAttachment;
            container->currentObject->parentIndex = 0;
            tnefSkip(container, static_cast<int32_t>(recLen + 2));
            return kTnefOk;
        }
        case TNEFREC_ATTACHDATA:
            if (container->currentObject == nullptr) break;
            noteRange(container, &container->currentObject->dataPos,
                      &container->currentObject->dataSize, recLen);
            return kTnefOk;
        case TNEFREC_ATTACHTITLE:
            tnefGetAttTitle(container, recLen);
            return kTnefOk;
        case TNEFREC_ATTACHMENT:
            return tnefReadPropertyBlock(container, recLen);
        default:
            break;
    }
    tnefSkip(container, static_cast<int32_t>(recLen + 2));
    return kTnefOk;
}

// The record loop; returns its status.
int32_t scanRecords(TnefContainer* container) {
    for (;;) {
        uint8_t header[kTnefRecordHeaderSize];
        if (tnefIoRead(container->io, header, sizeof header) < kTnefRecordHeaderSize) {
            if (container->traceEnabled != 0 && container->lFilePos != container->io->size) {
                tnefTracef(container,
                           "Warning: Finish file processing, but lFilePos 0x%X != fileSize 0x%X",
                           static_cast<unsigned>(container->lFilePos),
                           static_cast<unsigned>(container->io->size));
            }
            return kTnefOk;
        }
        container->lFilePos += kTnefRecordHeaderSize;
        uint8_t level = header[0];
        if (level != kTnefLevelMessage && level != kTnefLevelAttachment) return kTnefOk;
        uint32_t recID = tnefLe16(header + 1);
        uint32_t recType = tnefLe16(header + 3);
        uint32_t recLen = tnefLe32(header + 5);
        if (container->traceEnabled != 0) tnefTraceRecord(container, recID, recType, recLen);

        // A length whose record plus checksum no longer fits a positive 32-bit
        // step would stand still or move backwards. No input this reader can
        // address holds such a record, so it is taken as running past the end:
        // the scan stops here with what it has.
        if (recLen > 0x7FFFFFFDu) return kTnefOk;

        int32_t status = level == kTnefLevelMessage
                             ? handleMessageRecord(container, recID, recLen)
                             : handleAttachmentRecord(container, recID, recLen);
        if (status != kTnefOk) return status;
    }
}

}  // namespace

void tnefTraceRecord(TnefContainer* container, uint32_t recID, uint32_t recType,
                     uint32_t recLen) {
    const char* name = tnefRecordName(recID);
    if (name == nullptr) return;
    tnefTracef(container, "%s -- recID 0x%X -- recLen %d, 0x%X -- recType 0x%X, location 0x%X",
               name, recID, static_cast<int32_t>(recLen), recLen, recType,
               static_cast<unsigned>(container->lFilePos));
}

int32_t tnefScanStream(TnefContainer* container) {
    uint32_t signature = 0;
    if (tnefReadLE(container, 4, &signature) == 0 || signature != kTnefSignature) {
        return kTnefStreamFailure;
    }
    if (tnefSkip(container, 2) == 0) return kTnefStreamFailure;
    int32_t status = scanRecords(container);
    if (container->objectHead == nullptr) return status;
    tnefSettleObjects(container);
    return status;
}
