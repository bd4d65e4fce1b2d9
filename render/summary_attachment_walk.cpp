// The names of the Attachments line of the HTML and RTF summary headers.
#include <stdio.h>
#include <string.h>

#include "reader/memory.h"
#include "render/summary_line.h"
#include "stream/property_access.h"

namespace {

enum : uint32_t {
    kTagLongFileName16 = 0x3707001F,
    kTagLongFileName8 = 0x3707001E,
};

// Room for "zd", a signed 32-bit count, ".tmp" and the terminator.
enum : size_t { kGeneratedNameSize = 24 };

struct Walk {
    SummaryNameWriter write;
    void* state;
    bool first = true;
};

void deliver(Walk* walk, SummaryNameForm form, const void* bytes, int32_t size) {
    SummaryAttachmentName name{form, static_cast<const uint8_t*>(bytes), size, walk->first};
    walk->first = false;
    walk->write(walk->state, &name);
}

// The long file name in one form, or null unless it holds text.
MetaElement* fetchLongFileName(TnefContainer* container, TnefObject* object, uint32_t tag,
                               int32_t type) {
    HostAllocator* allocator = tnefHostAllocator(container);
    MetaElement* element = nullptr;
    int32_t status = tnefGetProperty(container, allocator, object, tag, &element);
    if (status == kTnefOk && element != nullptr && element->hasValue != 0 &&
        element->type == type && element->value != 0 && element->size > 0) {
        return element;
    }
    tnefFreeElement(allocator, element);
    return nullptr;
}

// A long file name that was found ends the search for its attachment, also
// when nothing but zeros is left of it.
bool deliverLongFileName(Walk* walk, TnefContainer* container, TnefObject* object, uint32_t tag,
                         int32_t type) {
    MetaElement* element = fetchLongFileName(container, object, tag, type);
    if (element == nullptr) return false;
    const bool wide = type == kElementText16;
    int32_t size = wide ? tnefTrimWideElement(element) : tnefTrimNarrowElement(element);
    if (size > 0) {
        deliver(walk, wide ? SummaryNameForm::kWide : SummaryNameForm::kNarrow,
                tnefTextBytes(element), size);
    }
    tnefFreeElement(tnefHostAllocator(container), element);
    return true;
}

void deliverName(Walk* walk, TnefContainer* container, TnefObject* object, int32_t position) {
    if (deliverLongFileName(walk, container, object, kTagLongFileName16, kElementText16)) return;
    if (deliverLongFileName(walk, container, object, kTagLongFileName8, kElementText8)) return;
    if (object->attachTitle != nullptr) {
        size_t length = strlen(object->attachTitle);
        deliver(walk, SummaryNameForm::kVerbatim, object->attachTitle,
                length > INT32_MAX ? INT32_MAX : static_cast<int32_t>(length));
        return;
    }
    char generated[kGeneratedNameSize];
    int length = snprintf(generated, sizeof generated, "zd%d.tmp", position);
    deliver(walk, SummaryNameForm::kVerbatim, generated, length);
}

}  // namespace

void tnefWalkAttachmentNames(TnefContainer* container, SummaryNameWriter write, void* state) {
    Walk walk{write, state};
    TnefObjectNode* node = container->objectHead;
    for (int32_t position = 0; node != nullptr && position < container->objectCount;
         ++position, node = node->next) {
        TnefObject* object = node->object;
        if (object != nullptr && object->kind == kObjectAttachment) {
            deliverName(&walk, container, object, position);
        }
    }
}
