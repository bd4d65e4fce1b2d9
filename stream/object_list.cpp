// The list of objects (message and attachments) that the scan builds.
#include <string.h>

#include "reader/memory.h"
#include "stream/scanner.h"

int32_t tnefAppendObject(TnefContainer* container) {
    HostAllocator* allocator = tnefHostAllocator(container);
    auto* object = static_cast<TnefObject*>(allocator->alloc(allocator, sizeof(TnefObject)));
    if (object == nullptr) return kTnefNoMemory;
    auto* node = static_cast<TnefObjectNode*>(allocator->alloc(allocator, sizeof(TnefObjectNode)));
    if (node == nullptr) {
        allocator->free(allocator, object);
        return kTnefNoMemory;
    }
    memset(object, 0, sizeof *object);
    memset(node, 0, sizeof *node);
    node->object = object;
    if (container->objectTail != nullptr) {
        container->objectTail->next = node;
    } else {
        container->objectHead = node;
    }
    container->objectTail = node;
    container->currentObject = object;
    container->objectCount += 1;
    return kTnefOk;
}
