// Decoding of a MAPI property block into rows. Fixed-size values are kept
// inline; counted values are kept as position and length in the input, to be
// read when somebody asks for them.
#include "stream/property_block.h"

#include <string.h>

#include "reader/bytes.h"
#include "reader/io.h"
#include "reader/memory.h"
#include "stream/scanner.h"

namespace {

enum class Step { kGoOn, kStop };

// Reads the values of one row; kStop when a needed field lies past the end.
Step readValues(TnefContainer* container, TnefBlockCursor& cursor, TnefPropRow* row,
                uint32_t type) {
    int32_t layout = tnefValueLayout(type);
    for (int32_t i = 0; i < row->valueCount && cursor.offset < cursor.length; ++i) {
        TnefPropValue* value = &row->values[i];
        if (layout == kTnefCountedValue) {
            if (!cursor.needs(4)) return Step::kStop;
            uint32_t length = cursor.take32();
            value->located.length = static_cast<int32_t>(length);
            value->located.filePos = cursor.base + static_cast<int64_t>(cursor.offset);
            tnefTraceCountedValue(container, value->located.filePos, length);
            cursor.offset += tnefPaddedLength(length);
        } else if (layout > 0) {
            if (!cursor.needs(static_cast<uint64_t>(layout))) return Step::kStop;
            memcpy(value->bytes, cursor.bytes + cursor.offset, static_cast<size_t>(layout));
            if (layout == 4) tnefTraceInteger(container, tnefLe32(value->bytes));
            cursor.offset += static_cast<uint64_t>(layout);
        }
    }
    return Step::kGoOn;
}

int32_t decodeBlock(TnefContainer* container, TnefObject* object, TnefBlockCursor& cursor) {
    HostAllocator* allocator = tnefHostAllocator(container);
    if (!cursor.needs(4)) return kTnefOk;
    auto count = static_cast<int32_t>(cursor.take32());
    if (count > kTnefMaxPropertyCount) return kTnefStreamFailure;
    auto* rows = static_cast<TnefPropRow*>(
        allocator->calloc(allocator, tnefAllocSize(count), sizeof(TnefPropRow)));
    if (rows == nullptr) return kTnefNoMemory;
    object->props = rows;
    object->propCount = count;

    for (int32_t r = 0; r < count && cursor.offset < cursor.length; ++r) {
        TnefPropRow* row = &rows[r];
        if (!cursor.needs(4)) return kTnefOk;
        row->tag = cursor.take32();
        TnefTagParts parts = tnefSplitTag(row->tag);
        tnefTraceTag(container, parts, cursor.position());

        if (tnefIsNamedId(parts.id) && !tnefSkipPropertyName(container, cursor, parts.type)) {
            return kTnefOk;
        }

        row->valueCount = 1;
        // Strictly below: when exactly four bytes remain they are the first
        // value, not a count.
        if (parts.multi == 1 && cursor.offset + 4 < cursor.length) {
            row->valueCount = static_cast<int32_t>(cursor.take32());
        }
        if (row->valueCount > kTnefMaxPropertyCount) return kTnefStreamFailure;
        row->values = static_cast<TnefPropValue*>(allocator->calloc(
            allocator, tnefAllocSize(row->valueCount), sizeof(TnefPropValue)));
        if (row->values == nullptr) return kTnefNoMemory;
        if (readValues(container, cursor, row, parts.type) == Step::kStop) return kTnefOk;
    }
    return kTnefOk;
}

}  // namespace

int32_t tnefReadPropertyBlock(TnefContainer* container, uint32_t length) {
    TnefObject* object = container->currentObject;
    if (object == nullptr || object->props != nullptr) {
        tnefSkip(container, static_cast<int32_t>(length + 2));
        return kTnefOk;
    }
    HostAllocator* allocator = tnefHostAllocator(container);
    auto* block = static_cast<uint8_t*>(allocator->alloc(allocator, length));
    if (block == nullptr) return kTnefNoMemory;

    int32_t status = kTnefOk;
    int64_t base = container->lFilePos;
    uint32_t checksum = 0;
    if (static_cast<uint32_t>(tnefIoRead(container->io, block, length)) != length) {
        status = kTnefStreamFailure;
    } else {
        container->lFilePos += length;
        if (tnefReadLE(container, 2, &checksum) == 0 ||
            tnefChecksumOk(block, length, checksum) == 0) {
            status = kTnefStreamFailure;
        } else {
            TnefBlockCursor cursor{block, length, 0, base};
            status = decodeBlock(container, object, cursor);
        }
    }
    allocator->free(allocator, block);
    if (status != kTnefOk && object->props != nullptr) {
        tnefFreePropRows(container, object->props, object->propCount);
        object->props = nullptr;
        object->propCount = 0;
    }
    return status;
}

int32_t tnefFreePropRows(TnefContainer* container, TnefPropRow* rows, int32_t count) {
    if (rows == nullptr) return kTnefOk;
    HostAllocator* allocator = tnefHostAllocator(container);
    for (int32_t i = 0; i < count; ++i) tnefFree(allocator, rows[i].values);
    allocator->free(allocator, rows);
    return kTnefOk;
}
