#include "stream/settle.h"

#include "reader/memory.h"
#include "stream/codepage.h"
#include "stream/property_access.h"

namespace {

enum : uint32_t {
    kTagInternetCodepage = 0x3FDE0003,
    kTagAttachMethod = 0x37050003,
    kTagAttachDataObject = 0x3701000D,
    kTagAttachDataBinary = 0x37010102,
};

// Size of the interface identifier in front of an OLE object value.
enum : int32_t { kObjectIidSize = 16 };

void settleCharset(TnefContainer* container, TnefObject* first) {
    HostAllocator* allocator = tnefHostAllocator(container);
    first->declaredCharset = first->charset;
    MetaElement* codePage =
        tnefFetchTyped(container, allocator, first, kTagInternetCodepage, kElementInteger);
    if (codePage == nullptr) return;
    CharsetId mapped = tnefCodePageToCharset(static_cast<uint32_t>(codePage->value));
    if (first->declaredCharset == kCharsetNone && mapped != kCharsetNone) {
        first->charset = mapped;
        first->declaredCharset = mapped;
    }
    tnefFreeElement(allocator, codePage);
}

void settleAttachment(TnefContainer* container, TnefObject* object) {
    HostAllocator* allocator = tnefHostAllocator(container);
    MetaElement* method =
        tnefFetchTyped(container, allocator, object, kTagAttachMethod, kElementInteger);
    if (method == nullptr) return;
    auto value = static_cast<int32_t>(method->value);
    TnefPropLocation location{};
    if (value == 5 || value == 6) {
        if (tnefGetPropertyLocation(object, kTagAttachDataObject, &location) == kTnefOk &&
            location.length >= 1) {
            object->dataPos = location.filePos + kObjectIidSize;
            object->dataSize = location.length - kObjectIidSize;
        }
        object->attachKind = value == 6 ? kAttachOle : kAttachEmbeddedMessage;
    } else if (value == 1) {
        if (object->dataPos == 0 && object->dataSize == 0 &&
            tnefGetPropertyLocation(object, kTagAttachDataBinary, &location) == kTnefOk &&
            location.length >= 1) {
            object->dataPos = location.filePos;
            object->dataSize = location.length;
        }
    } else if (value >= 2 && value <= 4) {
        object->attachKind = kAttachByReference;
    }
    tnefFreeElement(allocator, method);
}

}  // namespace

void tnefSettleObjects(TnefContainer* container) {
    if (container->objectHead == nullptr) return;
    if (container->objectHead->object != nullptr) {
        settleCharset(container, container->objectHead->object);
    }
    for (TnefObjectNode* node = container->objectHead; node != nullptr; node = node->next) {
        if (node->object != nullptr && node->object->kind == kObjectAttachment) {
            settleAttachment(container, node->object);
        }
    }
}
