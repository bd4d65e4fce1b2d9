#include "catalogue/subfile_time.h"

#include <string.h>

#include "reader/memory.h"
#include "stream/property_access.h"

namespace {

enum : uint32_t {
    kTagClientSubmitTime = 0x00390040,
    kTagLastModificationTime = 0x30080040,
    kTagCreationTime = 0x30070040,
};

bool copyTime(TnefContainer* container, TnefObject* object, uint32_t tag) {
    HostAllocator* allocator = tnefHostAllocator(container);
    MetaElement* element = tnefFetchTyped(container, allocator, object, tag, kElementTime);
    if (element == nullptr) return false;
    bool found = element->value != 0;
    if (found) memcpy(object->time, reinterpret_cast<const void*>(element->value), 8);
    tnefFreeElement(allocator, element);
    return found;
}

}  // namespace

int32_t tnefFetchSubfileTime(TnefContainer* container, TnefObject* object) {
    if (object->props == nullptr) return kTnefNoName;
    if (object->kind == kObjectMessage) {
        copyTime(container, object, kTagClientSubmitTime);
    } else if (object->kind == kObjectAttachment) {
        if (!copyTime(container, object, kTagLastModificationTime)) {
            copyTime(container, object, kTagCreationTime);
        }
    }
    return kTnefOk;
}
