// Reading the message's recipient table: rows of properties laid out as in a
// property block, from which each recipient's type, name and address are
// taken and appended to the To, Cc or Bcc list.
#include "stream/recipient_table.h"

#include "reader/io.h"
#include "reader/memory.h"
#include "reader/trace.h"
#include "stream/property_block.h"
#include "stream/recipient_lists.h"

namespace {

enum : uint32_t {
    kTagRecipientType = 0x0C150003,
    kIdDisplayName = 0x3001,
    kIdEmailAddress = 0x3003,
    kIdSmtpAddress = 0x39FE,
    kIdAddressCandidate = 0x403E,
};

// What one row yields.
struct RecipientRow {
    uint32_t recipientType = 0;
    TnefRecipientText name{nullptr, 0, 0};
    TnefRecipientText address{nullptr, 0, 0};
    TnefRecipientText fallback{nullptr, 0, 0};  // an address without at sign
    bool found = false;                         // `address` holds an at sign
};

struct TableReader {
    TnefContainer* container;
    TnefBlockCursor cursor;
    TnefRecipientLists lists;
};

bool isAddressCandidate(uint32_t id) {
    return id == kIdEmailAddress || id == kIdSmtpAddress || id == kIdAddressCandidate;
}

// Takes a counted value that lies whole within the data. The name is the
// last display name of the row; the address the first candidate in the
// stream that holds an at sign, else the last email address without one.
void capture(RecipientRow& row, uint32_t id, const TnefRecipientText& text) {
    if (id == kIdDisplayName) {
        row.name = text;
        return;
    }
    if (row.found || !isAddressCandidate(id)) return;
    if (tnefHasAtSign(text.bytes, text.length, text.type) != 0) {
        row.address = text;
        row.found = true;
    } else if (id == kIdEmailAddress) {
        row.fallback = text;
    }
}

// One value of a property. A value that doesn't fit is passed over without
// ending the row or the table.
void readValue(TableReader& reader, RecipientRow& row, uint32_t tag, const TnefTagParts& parts,
               int32_t layout) {
    TnefBlockCursor& cursor = reader.cursor;
    if (layout == kTnefCountedValue) {
        if (parts.type == kPtUnicode) reader.lists.wide = 1;
        if (!cursor.needs(4)) return;
        uint32_t length = cursor.take32();
        tnefTraceCountedValue(reader.container, cursor.base + static_cast<int64_t>(cursor.offset),
                              length);
        if (cursor.needs(length)) {
            capture(row, parts.id,
                    TnefRecipientText{cursor.bytes + cursor.offset, static_cast<int32_t>(length),
                                      parts.type});
        }
        cursor.offset += tnefPaddedLength(length);
    } else if (layout == 4) {
        if (!cursor.needs(4)) return;
        uint32_t value = cursor.take32();
        if (tag == kTagRecipientType) row.recipientType = value;
        tnefTraceInteger(reader.container, value);
    } else if (layout > 0 && cursor.needs(static_cast<uint64_t>(layout))) {
        cursor.offset += static_cast<uint64_t>(layout);
    }
}

enum class Step { kNextProperty, kRowDone, kFailed };

// One property of a row.
Step readProperty(TableReader& reader, RecipientRow& row) {
    TnefBlockCursor& cursor = reader.cursor;
    if (!(cursor.offset + 4 < cursor.length)) return Step::kRowDone;
    uint32_t tag = cursor.take32();
    TnefTagParts parts = tnefSplitTag(tag);
    tnefTraceTag(reader.container, parts, cursor.position());
    if (tnefIsNamedId(parts.id) && !tnefSkipPropertyName(reader.container, cursor, parts.type)) {
        return Step::kRowDone;
    }
    int32_t valueCount = 1;
    if (parts.multi == 1 && cursor.offset + 4 < cursor.length) {
        valueCount = static_cast<int32_t>(cursor.take32());
    }
    if (valueCount > kTnefMaxPropertyCount) return Step::kFailed;
    int32_t layout = tnefValueLayout(parts.type);
    for (int32_t i = 0; i < valueCount && cursor.offset < cursor.length; ++i) {
        uint64_t before = cursor.offset;
        readValue(reader, row, tag, parts, layout);
        // A value that took no bytes (a type without any, or one that doesn't
        // fit) leaves the offset where it was, and every later value of the
        // property would do just the same: nothing can come of them, and a
        // count of 65535 such values must not cost 65535 turns.
        if (cursor.offset == before) break;
    }
    return Step::kNextProperty;
}

// One row: its property count, its properties, then its entry in a list.
int32_t readRow(TableReader& reader, int32_t index) {
    TnefBlockCursor& cursor = reader.cursor;
    RecipientRow row;
    tnefTracef(reader.container, "Recipient #%d: MAPI Properties", index);
    // A row whose property count lies beyond the data has no properties.
    int32_t propertyCount = cursor.needs(4) ? static_cast<int32_t>(cursor.take32()) : 0;
    for (int32_t p = 0; p < propertyCount; ++p) {
        Step step = readProperty(reader, row);
        if (step == Step::kFailed) return kTnefStreamFailure;
        if (step == Step::kRowDone) break;
    }
    if (!row.found && row.fallback.bytes != nullptr) row.address = row.fallback;
    return tnefAppendRecipient(&reader.lists, tnefRecipientListOf(row.recipientType), row.name,
                               row.address);
}

// The row count R as the table gives it; 0 for a payload too short to hold
// it. The lists' spare room is worked out from this number as it stands.
int32_t announcedRows(TnefBlockCursor& cursor) {
    return cursor.needs(4) ? static_cast<int32_t>(cursor.take32()) : 0;
}

// The rows to walk. Every row takes at least the 4 bytes of its property
// count, so a count beyond what the data can hold announces rows that aren't
// there: those rows would have no properties and, one after the other,
// change nothing beyond what the first of them does (an empty To list in
// 8-bit form). The walk therefore takes the rows the data can hold plus one
// that stands for all the missing ones.
int32_t rowsToWalk(const TnefBlockCursor& cursor, int32_t announced) {
    if (announced <= 0) return 0;
    uint64_t fitting = (cursor.length - cursor.offset) / 4;
    if (static_cast<uint64_t>(announced) > fitting) return static_cast<int32_t>(fitting + 1);
    return announced;
}

}  // namespace

int32_t tnefBuildRecipientLists(TnefContainer* container, HostAllocator* allocator,
                                TnefObject* message) {
    int32_t size = message->recipTableSize;
    auto* table = static_cast<uint8_t*>(tnefAlloc(allocator, size));
    if (table == nullptr) return kTnefNoMemory;
    tnefIoSeek(container->io, message->recipTablePos, kSeekSet);
    int32_t got = size > 0 ? tnefIoRead(container->io, table, static_cast<uint32_t>(size)) : 0;
    if (got <= 0) {
        allocator->free(allocator, table);
        return kTnefStreamFailure;
    }
    if (got > size) got = size;  // a host that claims more than was asked

    // The table goes on with the bytes that came, however many were asked.
    TableReader reader{container, TnefBlockCursor{table, static_cast<uint64_t>(got), 0,
                                                  message->recipTablePos},
                       TnefRecipientLists{allocator, 0, 0, 0, {}}};
    int32_t announced = announcedRows(reader.cursor);
    reader.lists.growth = tnefRecipientGrowth(announced);
    int32_t rows = rowsToWalk(reader.cursor, announced);
    int32_t status = kTnefOk;
    for (int32_t r = 0; r < rows && status == kTnefOk; ++r) status = readRow(reader, r);
    if (status == kTnefOk) status = tnefPublishRecipientLists(container, &reader.lists, message);
    tnefReleaseRecipientLists(&reader.lists);
    allocator->free(allocator, table);
    return status;
}

int32_t tnefHasAtSign(const uint8_t* text, int32_t length, uint32_t type) {
    if (text == nullptr) return 0;
    if (type == kPtUnicode) {
        for (int32_t i = 0; i + 1 < length; i += 2) {
            if (text[i] == 0 && text[i + 1] == 0) return 0;
            if (text[i] == 0x40 && text[i + 1] == 0) return 1;
        }
        return 0;
    }
    for (int32_t i = 0; i < length && text[i] != 0; ++i) {
        if (text[i] == 0x40) return 1;
    }
    return 0;
}
