// The fields in front of a property's values, tag and name, and the trace
// lines of a property, shared by the property block decoder and the
// recipient table.
#include "reader/bytes.h"
#include "reader/trace.h"
#include "stream/property_block.h"

uint32_t TnefBlockCursor::take32() {
    uint32_t value = tnefLe32(bytes + offset);
    offset += 4;
    return value;
}

TnefTagParts tnefSplitTag(uint32_t tag) {
    TnefTagParts parts;
    parts.type = tag & 0xFFFF;
    parts.id = tag >> 16;
    parts.multi = (parts.type & kPtMultiValue) != 0 ? 1 : 0;
    parts.type &= ~static_cast<uint32_t>(kPtMultiValue);
    if (tnefTypeAlwaysCounted(parts.type)) parts.multi = 1;
    return parts;
}

bool tnefSkipPropertyName(const TnefContainer* container, TnefBlockCursor& cursor, uint32_t type) {
    if (!cursor.needs(16)) return false;
    cursor.offset += 16;
    if (!cursor.needs(4)) return false;
    uint32_t kind = cursor.take32();
    if (!cursor.needs(4)) return false;
    uint32_t field = cursor.take32();
    if (kind == 0) {
        tnefTracef(container,
                   "      **Named property ID (INT) 0x%X -- MAPI type %d, 0x%X -- start 0x%X", field,
                   type, type, cursor.position());
    } else {
        tnefTracef(container,
                   "      **Named property ID (STRING), ID length %d, 0x%X skip ID from offset 0x%X",
                   static_cast<int32_t>(field), field, cursor.position());
        cursor.offset += tnefPaddedLength(field);
    }
    return true;
}

void tnefTraceTag(const TnefContainer* container, const TnefTagParts& parts, uint32_t position) {
    tnefTracef(container, "    MAPI ID 0x%X -- MAPI type %d, 0x%X -- MV %d -- start offset 0x%X",
               parts.id, parts.type, parts.type, parts.multi, position);
}

void tnefTraceInteger(const TnefContainer* container, uint32_t value) {
    tnefTracef(container, "      **Integer value is %d", static_cast<int32_t>(value));
}

void tnefTraceCountedValue(const TnefContainer* container, int64_t filePos, uint32_t length) {
    tnefTracef(container, "      **String or object value start at 0x%X -- length %d, 0x%X",
               static_cast<unsigned>(filePos), static_cast<int32_t>(length), length);
}
