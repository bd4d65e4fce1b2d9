#include "stream/property_access.h"

#include <string.h>

#include "reader/bytes.h"
#include "reader/io.h"
#include "reader/memory.h"
#include "stream/property_block.h"

namespace {

enum class Source { kNone, kNumber, kCopy, kInput, kUnconverted };

struct Conversion {
    int32_t type;
    Source source;
    int32_t copyBytes;
};

// The element type of a MAPI type and how its value is had.
Conversion convert(uint32_t mapiType) {
    switch (mapiType) {
        case kPtUnspecified: return {kElementBinary, Source::kInput, 0};
        case kPtNull: return {kElementNone, Source::kNone, 0};
        case kPtI2:
        case kPtLong:
        case kPtError: return {kElementInteger, Source::kNumber, 0};
        case kPtBoolean: return {kElementBoolean, Source::kNumber, 0};
        case kPtFloat: return {kElementFloat, Source::kCopy, 4};
        case kPtDouble: return {kElementDouble, Source::kCopy, 8};
        case kPtCurrency:
        case kPtI8: return {kElementInt64, Source::kCopy, 8};
        case kPtAppTime:
        case kPtSysTime: return {kElementTime, Source::kCopy, 8};
        case kPtObject:
        case kPtBinary: return {kElementBinary, Source::kInput, 0};
        case kPtString8: return {kElementText8, Source::kInput, 0};
        case kPtUnicode: return {kElementText16, Source::kInput, 0};
        case kPtClsid: return {kElementBinary, Source::kCopy, 16};
        default: return {kElementNone, Source::kUnconverted, 0};
    }
}

const TnefPropRow* findRow(const TnefObject* object, uint32_t tag) {
    if (object->props == nullptr) return nullptr;
    for (int32_t i = 0; i < object->propCount; ++i) {
        if (object->props[i].tag == tag) return &object->props[i];
    }
    return nullptr;
}

bool isSeparator(uint8_t byte) {
    return byte == 0x5C || byte == 0x2F;
}

// Cuts the directory part off an attachment's long file name, in place.
void cutPath(const TnefObject* object, MetaElement* element) {
    if (element->value == 0 || object->attachKind != kAttachPlain || element->size < 1) return;
    auto* bytes = reinterpret_cast<uint8_t*>(element->value);
    int32_t size = element->size;
    int32_t cut = -1;
    if (element->tag == 0x3707001F && element->type == kElementText16) {
        for (int32_t p = size; p > 1; p -= 2) {
            if (bytes[p - 1] == 0 && isSeparator(bytes[p - 2])) {
                cut = p;
                break;
            }
        }
    } else if (element->tag == 0x3707001E && element->type == kElementText8) {
        for (int32_t p = size; p > 0; --p) {
            if (isSeparator(bytes[p - 1])) {
                cut = p;
                break;
            }
        }
    }
    if (cut < 0 || cut >= size) return;
    memmove(bytes, bytes + cut, static_cast<size_t>(size - cut));
    element->size = size - cut;
}

// Reads a counted value from the input into the element.
int32_t readFromInput(TnefContainer* container, HostAllocator* allocator,
                      const TnefPropValue& stored, MetaElement* element) {
    int32_t length = stored.located.length;
    if (length < 1 || length > kTnefMaxElementBytes) return kTnefNoMemory;
    if (tnefIoSeek(container->io, stored.located.filePos, kSeekSet) == 0) return kTnefStreamFailure;
    void* bytes = tnefAlloc(allocator, length);
    if (bytes == nullptr) return kTnefNoMemory;
    if (tnefIoRead(container->io, bytes, static_cast<uint32_t>(length)) != length) {
        allocator->free(allocator, bytes);
        return kTnefStreamFailure;
    }
    element->value = reinterpret_cast<uintptr_t>(bytes);
    element->size = length;
    return kTnefOk;
}

}  // namespace

int32_t tnefGetProperty(TnefContainer* container, HostAllocator* allocator, TnefObject* object,
                        uint32_t tag, MetaElement** out) {
    const TnefPropRow* row = findRow(object, tag);
    if (row == nullptr || row->valueCount == 0 || row->values == nullptr) return kTnefAbsent;
    auto* element = static_cast<MetaElement*>(allocator->alloc(allocator, sizeof(MetaElement)));
    if (element == nullptr) return kTnefNoMemory;
    memset(element, 0, sizeof *element);
    element->tag = tag;
    const TnefPropValue& stored = row->values[0];

    int32_t status = kTnefOk;
    Conversion conversion = convert(tag & 0xFFFF);
    switch (conversion.source) {
        case Source::kNone:
            break;
        case Source::kUnconverted:
            status = kTnefStreamFailure;
            break;
        case Source::kNumber:
            element->value = static_cast<uint64_t>(
                static_cast<int64_t>(static_cast<int32_t>(tnefLe32(stored.bytes))));
            element->type = conversion.type;
            element->hasValue = 1;
            break;
        case Source::kCopy: {
            void* copy = allocator->alloc(allocator, static_cast<size_t>(conversion.copyBytes));
            if (copy == nullptr) {
                allocator->free(allocator, element);
                return kTnefNoMemory;
            }
            memcpy(copy, stored.bytes, static_cast<size_t>(conversion.copyBytes));
            element->value = reinterpret_cast<uintptr_t>(copy);
            element->type = conversion.type;
            element->hasValue = 1;
            break;
        }
        case Source::kInput: {
            int32_t read = readFromInput(container, allocator, stored, element);
            if (read != kTnefOk) {
                allocator->free(allocator, element);
                return read;
            }
            element->type = conversion.type;
            element->hasValue = 1;
            break;
        }
    }
    cutPath(object, element);
    *out = element;
    return status;
}

int32_t tnefGetPropertyLocation(TnefObject* object, uint32_t tag, TnefPropLocation* out) {
    const TnefPropRow* row = findRow(object, tag);
    if (row == nullptr || row->valueCount == 0 || row->values == nullptr || out == nullptr) {
        return kTnefAbsent;
    }
    if (tnefValueLayout(tag & 0xFFFF) != kTnefCountedValue) return kTnefAbsent;
    out->filePos = row->values[0].located.filePos;
    out->length = row->values[0].located.length;
    return kTnefOk;
}

int32_t tnefFreeElement(HostAllocator* allocator, MetaElement* element) {
    if (element == nullptr) return kTnefOk;
    switch (element->type) {
        case kElementBinary:
        case kElementInt64:
        case kElementText8:
        case kElementText16:
        case kElementTime:
        case kElementFloat:
        case kElementDouble:
            if (element->value != 0) {
                allocator->free(allocator, reinterpret_cast<void*>(element->value));
                element->value = 0;
            }
            break;
        default:
            break;
    }
    tnefFree(allocator, element->name);
    allocator->free(allocator, element);
    return kTnefOk;
}

MetaElement* tnefFetchTyped(TnefContainer* container, HostAllocator* allocator, TnefObject* object,
                            uint32_t tag, int32_t type) {
    MetaElement* element = nullptr;
    int32_t status = tnefGetProperty(container, allocator, object, tag, &element);
    if (status == kTnefOk && element->hasValue != 0 && element->type == type) return element;
    tnefFreeElement(allocator, element);
    return nullptr;
}
