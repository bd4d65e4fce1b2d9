// The sender text of summary slot 0: "name" <address>, 8-bit or 16-bit.
#include <string.h>

#include "reader/io.h"
#include "reader/memory.h"
#include "reader/strings.h"
#include "stream/address_entry.h"
#include "stream/message_summary.h"
#include "stream/property_block.h"

namespace {

enum : uint32_t {
    kIdSentRepresentingName = 0x0042,
    kIdSenderName = 0x0C1A,
    kIdSentRepresentingAddress = 0x0065,
    kIdSenderAddress = 0x0C1F,
};

// Room for the quotes, blank, angles and terminator in either form.
enum : int32_t { kSenderDelimiterRoom = 20 };

// The bytes of one sender property as read from the input.
struct SenderValue {
    uint8_t* bytes = nullptr;  // null: the text is missing
    int32_t length = 0;
    uint32_t type = 0;  // MAPI type of the row, multi-value flag removed
};

// Reads the first value of a row straight from the input, with no length
// limit. Any failure leaves the text missing.
SenderValue readRowValue(TnefContainer* container, HostAllocator* allocator,
                         const TnefPropRow* row) {
    SenderValue value;
    if (row == nullptr || row->valueCount == 0 || row->values == nullptr) return value;
    const TnefPropValue& stored = row->values[0];
    int32_t length = stored.located.length;
    if (tnefIoSeek(container->io, stored.located.filePos, kSeekSet) == 0) return value;
    auto* bytes = static_cast<uint8_t*>(tnefAlloc(allocator, length));
    if (bytes == nullptr) return value;
    if (length < 0 || tnefIoRead(container->io, bytes, static_cast<uint32_t>(length)) != length) {
        allocator->free(allocator, bytes);
        return value;
    }
    value.bytes = bytes;
    value.length = length;
    value.type = tnefSplitTag(row->tag).type;
    return value;
}

// A value as it goes into the sender text. The wide flag, whichever row
// raised it, makes the text 16-bit, and 8-bit sender values are then read
// as pairs. Only when the name and the address mix the two forms is the
// 8-bit one widened byte by byte instead, so that such a sender stays
// readable.
TnefEntryText entryTextOf(const SenderValue& value, const SenderValue& other, bool wide) {
    if (value.bytes == nullptr) return TnefEntryText{nullptr, 0, 0};
    bool mixed = value.type == kPtString8 && other.bytes != nullptr && other.type == kPtUnicode;
    return tnefEntryText(value.bytes, value.length, wide, mixed);
}

}  // namespace

int32_t tnefBuildSender(TnefContainer* container, HostAllocator* allocator, TnefObject* message) {
    const TnefPropRow* found[4] = {nullptr, nullptr, nullptr, nullptr};
    const uint32_t ids[4] = {kIdSentRepresentingName, kIdSenderName, kIdSentRepresentingAddress,
                             kIdSenderAddress};
    bool wide = false;
    for (int32_t i = 0; message->props != nullptr && i < message->propCount; ++i) {
        const TnefPropRow* row = &message->props[i];
        for (int32_t k = 0; k < 4; ++k) {
            if ((row->tag >> 16) == ids[k]) found[k] = row;
        }
        if ((row->tag & 0xFFFF) == kPtUnicode) wide = true;
    }
    if (wide) message->charset = kCharsetUnicode;

    // The first choice is taken whenever its row exists, even when it can't
    // be read: there is no second try with the other row.
    SenderValue nameValue = readRowValue(container, allocator, found[0] ? found[0] : found[1]);
    SenderValue addressValue = readRowValue(container, allocator, found[2] ? found[2] : found[3]);
    TnefEntryText name = entryTextOf(nameValue, addressValue, wide);
    TnefEntryText address = entryTextOf(addressValue, nameValue, wide);

    int32_t status = kTnefOk;
    if (name.bytes == nullptr && address.bytes == nullptr) {
        status = kTnefNoName;
    } else {
        int32_t room = tnefSizeAdd(
            tnefSizeAdd(tnefEntryTextSize(name), tnefEntryTextSize(address)), kSenderDelimiterRoom);
        auto* text = static_cast<uint8_t*>(tnefAlloc(allocator, room));
        auto* element = text == nullptr ? nullptr
                                        : static_cast<MetaElement*>(
                                              allocator->alloc(allocator, sizeof(MetaElement)));
        if (element == nullptr) {
            tnefFree(allocator, text);
            status = kTnefNoMemory;
        } else {
            int32_t used = 0;
            tnefPutEntry(text, &used, name, address, wide);
            memset(element, 0, sizeof *element);
            element->value = reinterpret_cast<uintptr_t>(text);
            element->hasValue = 1;
            element->size = used;
            element->type = wide ? kElementText16 : kElementText8;
            element->name = tnefCopyText(allocator, summaryRows[kSummaryFrom].name);
            container->summary[kSummaryFrom] = element;
        }
    }
    tnefFree(allocator, nameValue.bytes);
    tnefFree(allocator, addressValue.bytes);
    return status;
}
