// The container as a small directory: one entry per object, a message at
// the top with its attachments below, and an optional "root/" entry above.
#include <string.h>

#include "catalogue/subfile_naming.h"
#include "catalogue/subfile_time.h"
#include "reader/memory.h"
#include "reader/operations.h"
#include "stream/codepage.h"
#include "stream/property_access.h"

namespace {

constexpr char kRootName[] = "root/";
enum : uint32_t { kTagMessageCodepage = 0x3FFD0003 };

int32_t describeRoot(SubfileInfo* info, HostAllocator* allocator) {
    info->type = kSubfileRoot;
    info->childCount = 1;
    info->children = static_cast<int32_t*>(allocator->alloc(allocator, sizeof(int32_t)));
    if (info->children == nullptr) return kTnefNoMemory;
    info->children[0] = 1;
    info->parentIndex = -1;
    info->rootMark = 0;
    info->name = static_cast<char*>(allocator->alloc(allocator, sizeof kRootName + 1));
    if (info->name == nullptr) return kTnefNoMemory;
    memcpy(info->name, kRootName, sizeof kRootName);
    return kTnefOk;
}

// The first object lists every other object as its child and carries the
// message's charset, looked up from the message code page when unknown.
int32_t describeFirstObject(TnefContainer* container, TnefObject* object, SubfileInfo* info,
                            HostAllocator* allocator, int32_t offset) {
    info->childCount = container->objectCount - 1;
    if (info->childCount > 0) {
        info->children = static_cast<int32_t*>(
            tnefAlloc(allocator, tnefSizeMul(info->childCount, sizeof(int32_t))));
        if (info->children == nullptr) return kTnefNoMemory;
        for (int32_t i = 1; i < container->objectCount; ++i) info->children[i - 1] = i + offset;
    }
    if (object->charset == kCharsetNone) {
        if (MetaElement* codePage = tnefFetchTyped(container, allocator, object,
                                                   kTagMessageCodepage, kElementInteger)) {
            object->charset = tnefCodePageToCharset(static_cast<uint32_t>(codePage->value));
            tnefFreeElement(allocator, codePage);
        }
    }
    info->charset = object->charset;
    return kTnefOk;
}

}  // namespace

int32_t tnefGetSubfileInfo(TnefContainer* container, int32_t index, SubfileInfo* info,
                           ResultMemory* memory) {
    if (container == nullptr || info == nullptr || !tnefResultMemoryUsable(memory)) {
        return kTnefBadArgument;
    }
    HostAllocator* allocator = memory->allocator;
    ContainerInfo count{};
    tnefGetContainerInfo(container, &count, memory);
    bool rooted = (container->openFlags & kTnefOpenRootEntry) != 0;
    const char* prefix = rooted ? kRootName : "";
    if (index < 0 || index >= count.subfileCount) return kTnefBadArgument;
    if (rooted && index == 0) return describeRoot(info, allocator);

    int32_t offset = rooted ? 1 : 0;
    int32_t place = index - offset;
    TnefObject* object = tnefObjectAt(container, place);
    if (object == nullptr) return kTnefNoObject;

    info->parentIndex = object->parentIndex + offset;
    info->type = object->kind;
    if (object->kind == kObjectAttachment && object->attachKind == kAttachOle) {
        info->type = kSubfileOle;
    }
    if (place == 0) {
        int32_t status = describeFirstObject(container, object, info, allocator, offset);
        if (status != kTnefOk) return status;
    }
    info->size = object->dataSize;
    if (object->name == nullptr) {
        int32_t status = tnefMakeSubfileName(container, object, place);
        if (status != kTnefOk) return status;
    }
    auto nameLength = static_cast<int32_t>(strlen(object->name));
    auto prefixLength = static_cast<int32_t>(strlen(prefix));
    info->name = static_cast<char*>(
        tnefAlloc(allocator, tnefSizeAdd(tnefSizeAdd(nameLength, prefixLength), 2)));
    if (info->name == nullptr) return kTnefNoMemory;
    memcpy(info->name, prefix, static_cast<size_t>(prefixLength));
    memcpy(info->name + prefixLength, object->name, static_cast<size_t>(nameLength) + 1);

    if (object->time[7] == 0) tnefFetchSubfileTime(container, object);
    memcpy(info->time, object->time, sizeof info->time);
    return kTnefOk;
}
