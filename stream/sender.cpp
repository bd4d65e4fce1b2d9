// The sender text of summary slot 0: "name" <address>, 8-bit or 16-bit.
#include <string.h>

#include "reader/io.h"
#include "reader/memory.h"
#include "reader/strings.h"
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

struct SenderText {
    uint8_t* bytes = nullptr;
    int32_t length = 0;  // measured length
};

// Reads the first value of a row straight from the input, with no length
// limit. Any failure leaves the text missing.
SenderText readRowText(TnefContainer* container, HostAllocator* allocator, const TnefPropRow* row,
                       bool wide) {
    SenderText text;
    if (row == nullptr || row->valueCount == 0 || row->values == nullptr) return text;
    const TnefPropValue& value = row->values[0];
    int32_t length = value.located.length;
    if (tnefIoSeek(container->io, value.located.filePos, kSeekSet) == 0) return text;
    auto* bytes = static_cast<uint8_t*>(tnefAlloc(allocator, length));
    if (bytes == nullptr) return text;
    if (length < 0 || tnefIoRead(container->io, bytes, static_cast<uint32_t>(length)) != length) {
        allocator->free(allocator, bytes);
        return text;
    }
    int32_t measured = 0;
    if (wide) {
        while (measured + 1 < length && (bytes[measured] != 0 || bytes[measured + 1] != 0)) {
            measured += 2;
        }
    } else {
        while (measured < length && bytes[measured] != 0) ++measured;
    }
    text.bytes = bytes;
    text.length = measured;
    return text;
}

// Writes one delimiter character in the text's form.
void putDelimiter(uint8_t* out, int32_t* used, uint8_t character, bool wide) {
    out[(*used)++] = character;
    if (wide) out[(*used)++] = 0;
}

void putBytes(uint8_t* out, int32_t* used, const SenderText& text) {
    if (text.length > 0) memcpy(out + *used, text.bytes, static_cast<size_t>(text.length));
    *used += text.length;
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

    SenderText name = readRowText(container, allocator, found[0] ? found[0] : found[1], wide);
    SenderText address = readRowText(container, allocator, found[2] ? found[2] : found[3], wide);
    int32_t status = kTnefOk;
    if (name.bytes == nullptr && address.bytes == nullptr) {
        status = kTnefNoName;
    } else {
        int32_t room = tnefSizeAdd(tnefSizeAdd(name.length, address.length), kSenderDelimiterRoom);
        auto* text = static_cast<uint8_t*>(tnefAlloc(allocator, room));
        auto* element = text == nullptr ? nullptr
                                        : static_cast<MetaElement*>(
                                              allocator->alloc(allocator, sizeof(MetaElement)));
        if (element == nullptr) {
            tnefFree(allocator, text);
            status = kTnefNoMemory;
        } else {
            int32_t used = 0;
            if (name.bytes != nullptr) {
                putDelimiter(text, &used, '"', wide);
                putBytes(text, &used, name);
                putDelimiter(text, &used, '"', wide);
                if (address.bytes != nullptr) putDelimiter(text, &used, ' ', wide);
            }
            if (address.bytes != nullptr) {
                putDelimiter(text, &used, '<', wide);
                putBytes(text, &used, address);
                putDelimiter(text, &used, '>', wide);
            }
            int32_t size = used;
            putDelimiter(text, &used, 0, wide);
            memset(element, 0, sizeof *element);
            element->value = reinterpret_cast<uintptr_t>(text);
            element->hasValue = 1;
            element->size = size;
            element->type = wide ? kElementText16 : kElementText8;
            element->name = tnefCopyText(allocator, summaryRows[kSummaryFrom].name);
            container->summary[kSummaryFrom] = element;
        }
    }
    tnefFree(allocator, name.bytes);
    tnefFree(allocator, address.bytes);
    return status;
}
