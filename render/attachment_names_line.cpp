// The Attachments line of the text summary. Each attachment gives at most
// one name, from the first of these sources that applies: its 16-bit long
// file name, its 8-bit long file name, its title record, or a generated
// "zdN.tmp" with N its place in the object list.
#include <stdio.h>
#include <string.h>

#include "reader/memory.h"
#include "reader/text_conversions.h"
#include "render/plain_text.h"
#include "stream/property_access.h"

namespace {

enum : uint32_t {
    kTagLongFileName16 = 0x3707001F,
    kTagLongFileName8 = 0x3707001E,
};

// Room for "zd", a signed 32-bit count, ".tmp" and the terminator.
enum : size_t { kGeneratedNameSize = 24 };

struct NameLine {
    TnefContainer* container;
    IoObject* output;
    CharsetId wanted;
    CharsetId message;
    bool firstName = true;
    bool wideClosing = false;
};

// The label before the first name, the separator before every later one.
void writePair(NameLine* line, bool wide) {
    if (line->firstName) {
        tnefWriteLiteral(line->output, kTnefAttachmentsLabel, wide);
        line->firstName = false;
        if (wide) line->wideClosing = true;
    } else {
        tnefWriteLiteral(line->output, kTnefNameSeparator, wide);
    }
}

void writeName(NameLine* line, const void* bytes, int32_t count, bool wide) {
    writePair(line, wide);
    tnefWriteBytes(line->output, bytes, count);
}

// Writes a converted name and gives its buffer back; a conversion that gave
// nothing drops the name together with its label or separator.
void writeConverted(NameLine* line, uint8_t* bytes, int32_t count, bool wide) {
    if (bytes == nullptr) return;
    if (count > 0) {
        writeName(line, bytes, count, wide);
        line->container->charsetConverted = 1;
    }
    tnefFree(tnefHostAllocator(line->container), bytes);
}

void writeWideName(NameLine* line, const uint8_t* text, int32_t size) {
    if (line->wanted == kCharsetUnicode ||
        (line->wanted == kCharsetNone &&
         (line->message == kCharsetNone || line->message == kCharsetUnicode))) {
        writeName(line, text, size, true);
        return;
    }
    const CharsetId target = line->wanted == kCharsetNone ? line->message : line->wanted;
    int32_t count = 0;
    uint8_t* narrow = tnefUnicodeToCharset(line->container, text, size, &count, target);
    writeConverted(line, narrow, count, false);
}

void writeNarrowName(NameLine* line, const uint8_t* text, int32_t size) {
    const CharsetId wanted = line->wanted;
    const CharsetId message = line->message;
    if (size < 1 || wanted == kCharsetNone || message == kCharsetNone || wanted == message) {
        writeName(line, text, size, false);
        return;
    }
    int32_t count = 0;
    if (wanted == kCharsetUnicode) {
        uint8_t* widened = tnefCharsetToUnicode(line->container, text, size, &count, message);
        writeConverted(line, widened, count, true);
        return;
    }
    uint8_t* recoded = tnefRecodeText(line->container, text, size, message, wanted, &count);
    if (recoded == nullptr) return;
    writeName(line, recoded, count, false);
    tnefFree(tnefHostAllocator(line->container), recoded);
}

// Fetches the long file name in one form; null unless it holds text.
MetaElement* fetchLongFileName(NameLine* line, TnefObject* object, uint32_t tag, int32_t type) {
    HostAllocator* allocator = tnefHostAllocator(line->container);
    MetaElement* element = nullptr;
    int32_t status = tnefGetProperty(line->container, allocator, object, tag, &element);
    if (status == kTnefOk && element != nullptr && element->hasValue != 0 &&
        element->type == type && element->value != 0 && element->size > 0) {
        return element;
    }
    tnefFreeElement(allocator, element);
    return nullptr;
}

void writeObjectName(NameLine* line, TnefObject* object, int32_t place) {
    HostAllocator* allocator = tnefHostAllocator(line->container);
    MetaElement* element =
        fetchLongFileName(line, object, kTagLongFileName16, kElementText16);
    if (element != nullptr) {
        const uint8_t* text = tnefElementBytes(element);
        int32_t size = tnefTrimWideZeros(text, element->size);
        // A name of zero units only ends the search: no other source is tried.
        if (size > 0) writeWideName(line, text, size);
        tnefFreeElement(allocator, element);
        return;
    }
    element = fetchLongFileName(line, object, kTagLongFileName8, kElementText8);
    if (element != nullptr) {
        const uint8_t* text = tnefElementBytes(element);
        writeNarrowName(line, text, tnefTrimNarrowZeros(text, element->size));
        tnefFreeElement(allocator, element);
        return;
    }
    if (object->attachTitle != nullptr) {
        size_t length = strlen(object->attachTitle);
        writeName(line, object->attachTitle,
                  length > INT32_MAX ? INT32_MAX : static_cast<int32_t>(length), false);
        return;
    }
    char generated[kGeneratedNameSize];
    int length = snprintf(generated, sizeof generated, "zd%d.tmp", place);
    writeName(line, generated, length, false);
}

}  // namespace

bool tnefWriteAttachmentNames(TnefContainer* container, TnefObject* message, CharsetId wanted,
                              IoObject* output) {
    NameLine line{container, output, wanted, tnefMessageCharset(message)};
    TnefObjectNode* node = container->objectHead;
    for (int32_t place = 0; node != nullptr && place < container->objectCount;
         ++place, node = node->next) {
        TnefObject* object = node->object;
        if (object != nullptr && object->kind == kObjectAttachment) {
            writeObjectName(&line, object, place);
        }
    }
    return line.wideClosing;
}
