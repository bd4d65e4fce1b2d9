// Metadata queries: the message's seven summary elements, or any property
// of any subfile by its tag. Everything handed out comes from the host's
// result allocator and belongs to the host.
#include <string.h>

#include "reader/memory.h"
#include "reader/operations.h"
#include "reader/strings.h"
#include "stream/message_summary.h"
#include "stream/property_access.h"

namespace {

// A copy of one summary slot's value into `target`; a refusal leaves the
// element without value and is no failure.
void copySummaryValue(const MetaElement* source, MetaElement* target, HostAllocator* allocator) {
    target->type = source->type;
    target->hasValue = source->hasValue;
    if (source->value != 0 && source->size != 0) {
        auto* bytes = static_cast<uint8_t*>(tnefAlloc(allocator, tnefSizeAdd(source->size, 2)));
        if (bytes == nullptr) return;
        memcpy(bytes, reinterpret_cast<const void*>(source->value), static_cast<size_t>(source->size));
        bytes[source->size] = 0;
        bytes[source->size + 1] = 0;
        target->value = reinterpret_cast<uintptr_t>(bytes);
        target->size = source->size;
    } else if ((source->type == kElementTime || source->type == kElementDouble) &&
               source->value != 0) {
        void* bytes = allocator->alloc(allocator, 8);
        if (bytes == nullptr) return;
        memcpy(bytes, reinterpret_cast<const void*>(source->value), 8);
        target->value = reinterpret_cast<uintptr_t>(bytes);
    } else if (source->type == kElementInteger) {
        target->value = source->value;
    }
}

int32_t answerDefault(TnefContainer* container, MetadataResult* result, HostAllocator* allocator) {
    result->count = kSummarySlots;
    auto** items = static_cast<MetaElement**>(
        allocator->alloc(allocator, kSummarySlots * sizeof(MetaElement*)));
    if (items == nullptr) return kTnefNoMemory;
    memset(items, 0, kSummarySlots * sizeof(MetaElement*));
    result->items = items;
    for (int32_t i = 0; i < kSummarySlots; ++i) {
        auto* element = static_cast<MetaElement*>(allocator->alloc(allocator, sizeof(MetaElement)));
        if (element == nullptr) return kTnefNoMemory;
        memset(element, 0, sizeof *element);
        items[i] = element;
        const MetaElement* source =
            (container->summary != nullptr && i < container->summaryCount) ? container->summary[i]
                                                                           : nullptr;
        if (source != nullptr) copySummaryValue(source, element, allocator);
        element->name = tnefCopyText(allocator, summaryRows[i].name);
        if (element->name == nullptr) return kTnefNoMemory;
    }
    return kTnefOk;
}

bool passesFilter(const MetadataRequest* request) {
    if (request == nullptr || request->kind != 0) return false;
    uint32_t id = request->tag >> 16;
    if (id == 0 || id == 0xFFFF) return false;
    uint32_t type = request->tag & 0xFFFF;
    switch (type) {
        case 0: case 1: case 2: case 3: case 4: case 5: case 6: case 7:
        case 10: case 11: case 13: case 20: case 30: case 31: case 64: case 72: case 258:
            return true;
        default:
            return false;
    }
}

int32_t answerRequests(TnefContainer* container, TnefObject* object, int32_t requestCount,
                       MetadataRequest** requests, MetadataResult* result,
                       HostAllocator* allocator) {
    auto* tags = static_cast<uint32_t*>(
        tnefAlloc(allocator, tnefSizeMul(requestCount, sizeof(uint32_t))));
    if (tags == nullptr) return kTnefNoMemory;
    int32_t passed = 0;
    for (int32_t i = 0; i < requestCount; ++i) {
        if (passesFilter(requests[i])) tags[passed++] = requests[i]->tag;
    }
    if (passed > 0) {
        auto** items = static_cast<MetaElement**>(
            allocator->calloc(allocator, static_cast<size_t>(passed), sizeof(MetaElement*)));
        if (items == nullptr) {
            allocator->free(allocator, tags);
            return kTnefNoMemory;
        }
        result->items = items;
        int32_t stored = 0;
        for (int32_t i = 0; i < passed; ++i) {
            MetaElement* element = nullptr;
            int32_t status = tnefGetProperty(container, allocator, object, tags[i], &element);
            if (status == kTnefOk) {
                items[stored++] = element;
                result->count = stored;
            } else {
                tnefFreeElement(allocator, element);
            }
        }
    }
    allocator->free(allocator, tags);
    return kTnefOk;
}

}  // namespace

int32_t tnefGetSubfileMetadata(TnefContainer* container, int32_t index, int32_t requestCount,
                               MetadataRequest** requests, MetadataResult* result,
                               ResultMemory* memory) {
    if (container == nullptr || memory == nullptr || memory->allocator == nullptr ||
        result == nullptr || requestCount < 0) {
        return kTnefBadArgument;
    }
    if (requestCount == 0 && requests != nullptr) return kTnefOk;
    if (requestCount > 0 && requests == nullptr) return kTnefBadArgument;
    if ((container->openFlags & kTnefOpenRootEntry) != 0) {
        if (index == 0) return kTnefOk;
        index -= 1;
    }
    if (index < 0 || index >= container->objectCount) return kTnefBadArgument;
    bool defaultMode = requestCount == 0;
    if (defaultMode && index != 0) return kTnefOk;
    TnefObject* object = tnefObjectAt(container, index);
    if (object == nullptr) return kTnefNoObject;
    if (defaultMode) return answerDefault(container, result, memory->allocator);
    return answerRequests(container, object, requestCount, requests, result, memory->allocator);
}
