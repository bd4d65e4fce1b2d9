// Growing and writing the three recipient lists, and handing them over as
// the summary elements To, Cc and Bcc.
#include "stream/recipient_lists.h"

#include <string.h>

#include "reader/memory.h"
#include "reader/strings.h"
#include "stream/address_entry.h"
#include "stream/message_summary.h"
#include "stream/property_block.h"

namespace {

// Every row asks for this much beyond its texts: room for the separator,
// delimiters and terminator in either form.
enum : int32_t { kRowBaseNeed = 30 };
// An 8-bit list also keeps two bytes more than it needs.
enum : int32_t { kNarrowSpare = 2 };

// True when `size` bytes fit in `capacity`; a poisoned size never fits.
bool fits(int32_t capacity, int32_t size) {
    return size != kTnefSizePoison && size <= capacity;
}

uint8_t* resize(HostAllocator* allocator, uint8_t* block, int32_t size) {
    return static_cast<uint8_t*>(allocator->realloc(allocator, block, tnefAllocSize(size)));
}

// Turns a list written in 8-bit form into 16-bit form, each byte becoming
// one unit, from the back so that no byte is overwritten before it is read.
int32_t widenList(TnefRecipientLists* lists, TnefRecipientList* list) {
    if (list->text == nullptr) return kTnefOk;
    int32_t wideUsed = tnefSizeMul(list->used, 2);
    if (!fits(list->capacity, tnefSizeAdd(wideUsed, 2))) {
        int32_t capacity = tnefSizeAdd(wideUsed, lists->growth);
        uint8_t* grown = resize(lists->allocator, list->text, capacity);
        if (grown == nullptr) return kTnefNoMemory;
        list->text = grown;
        list->capacity = capacity;
    }
    for (int32_t i = list->used - 1; i >= 0; --i) {
        list->text[2 * i + 1] = 0;
        list->text[2 * i] = list->text[i];
    }
    list->used = wideUsed;
    list->text[wideUsed] = 0;
    list->text[wideUsed + 1] = 0;
    return kTnefOk;
}

TnefEntryText entryTextOf(const TnefRecipientText& text, bool wide) {
    if (text.bytes == nullptr) return TnefEntryText{nullptr, 0, 0};
    return tnefEntryText(text.bytes, text.length, wide, text.type == kPtString8);
}

}  // namespace

int32_t tnefRecipientListOf(uint32_t recipientType) {
    if (recipientType == 2) return kRecipientCc;
    if (recipientType == 3) return kRecipientBcc;
    return kRecipientTo;
}

int32_t tnefRecipientGrowth(int32_t rowCount) {
    return tnefSizeAdd(1024, tnefSizeMul(1024, rowCount / 10));
}

int32_t tnefAppendRecipient(TnefRecipientLists* lists, int32_t which,
                            const TnefRecipientText& name, const TnefRecipientText& address) {
    bool wide = lists->wide != 0;
    // Tables that mix 8-bit and 16-bit strings: the wide flag rises at the
    // first 16-bit value and stays, and the finished lists are marked
    // 16-bit. Rows already written in 8-bit form are widened here, byte by
    // byte, once; 8-bit strings of later rows are widened as they are
    // written (tnefEntryText). So every list is 16-bit text throughout and
    // stays readable. A table whose strings are all 8-bit never raises the
    // flag, and in one whose strings are all 16-bit the rows before the flag
    // have no text: neither is changed by this.
    if (wide && lists->listsWide == 0) {
        for (TnefRecipientList& list : lists->list) {
            if (widenList(lists, &list) != kTnefOk) return kTnefNoMemory;
        }
        lists->listsWide = 1;
    }

    TnefEntryText nameText = entryTextOf(name, wide);
    TnefEntryText addressText = entryTextOf(address, wide);
    bool hasText = nameText.bytes != nullptr || addressText.bytes != nullptr;
    int32_t need = tnefSizeAdd(
        tnefSizeAdd(kRowBaseNeed, tnefEntryTextSize(nameText)), tnefEntryTextSize(addressText));
    int32_t spare = wide ? 0 : kNarrowSpare;
    TnefRecipientList* list = &lists->list[which];
    bool separate = false;

    if (list->text == nullptr) {
        // An 8-bit list comes to exist even for a row without text, as an
        // empty string; a 16-bit list only for a row that writes to it.
        if (wide && !hasText) return kTnefOk;
        int32_t capacity = tnefSizeAdd(tnefSizeAdd(lists->growth, need), spare);
        auto* text = static_cast<uint8_t*>(tnefAlloc(lists->allocator, capacity));
        if (text == nullptr) return kTnefNoMemory;
        text[0] = 0;
        list->text = text;
        list->capacity = capacity;
        list->used = 0;
    } else {
        if (!hasText) return kTnefOk;
        if (!fits(list->capacity, tnefSizeAdd(list->used, need))) {
            int32_t capacity =
                tnefSizeAdd(tnefSizeAdd(tnefSizeAdd(list->used, lists->growth), need), spare);
            uint8_t* grown = resize(lists->allocator, list->text, capacity);
            if (grown == nullptr) return kTnefNoMemory;
            list->text = grown;
            list->capacity = capacity;
        }
        separate = true;
    }
    if (!hasText) return kTnefOk;
    if (separate) {
        tnefPutDelimiter(list->text, &list->used, ',', wide);
        tnefPutDelimiter(list->text, &list->used, ' ', wide);
    }
    tnefPutEntry(list->text, &list->used, nameText, addressText, wide);
    return kTnefOk;
}

int32_t tnefPublishRecipientLists(TnefContainer* container, TnefRecipientLists* lists,
                                  TnefObject* message) {
    HostAllocator* allocator = lists->allocator;
    bool markWide = lists->wide != 0;
    int32_t status = kTnefOk;
    for (int32_t i = 0; i < kRecipientLists; ++i) {
        auto* element = static_cast<MetaElement*>(allocator->alloc(allocator, sizeof(MetaElement)));
        if (element == nullptr) {
            status = kTnefNoMemory;
            break;
        }
        memset(element, 0, sizeof *element);
        container->summary[kSummaryTo + i] = element;
        TnefRecipientList* list = &lists->list[i];
        if (list->text == nullptr) continue;  // an empty placeholder
        element->value = reinterpret_cast<uintptr_t>(list->text);
        list->text = nullptr;
        element->type = lists->wide != 0 ? kElementText16 : kElementText8;
        element->size = list->used;
        element->name = tnefCopyText(allocator, summaryRows[kSummaryTo + i].name);
        if (element->name == nullptr) {
            status = kTnefNoMemory;
            markWide = false;
            break;
        }
        element->hasValue = 1;
    }
    if (markWide) message->charset = kCharsetUnicode;
    return status;
}

void tnefReleaseRecipientLists(TnefRecipientLists* lists) {
    for (TnefRecipientList& list : lists->list) {
        tnefFree(lists->allocator, list.text);
        list.text = nullptr;
    }
}
