// Opening, describing and closing a container.
#include <string.h>

#include "reader/io.h"
#include "reader/memory.h"
#include "reader/operations.h"
#include "stream/message_summary.h"
#include "stream/property_access.h"
#include "stream/property_block.h"
#include "stream/scanner.h"

TnefContainer* tnefOpenContainer(IoObject* input, HostContext* host, uint32_t flags,
                                 int32_t unused1, intptr_t unused2, int32_t* status) {
    (void)unused1;
    (void)unused2;
    if (input->open == nullptr || input->open(input) == 0 || input->close == nullptr) {
        *status = kTnefStreamFailure;
        return nullptr;
    }
    tnefIoSeek(input, 0, kSeekSet);
    HostAllocator* allocator = &host->allocator;
    auto* container =
        static_cast<TnefContainer*>(allocator->alloc(allocator, sizeof(TnefContainer)));
    if (container == nullptr) {
        *status = kTnefNoMemory;
        return nullptr;
    }
    memset(container, 0, sizeof *container);
    container->openFlags = flags;
    container->io = input;
    container->host = host;

    *status = tnefScanStream(container);
    // A stream without any record has no object to summarise; it opens empty.
    if (*status == kTnefOk && container->objectHead != nullptr) {
        *status = tnefBuildMessageSummary(container, allocator);
    }
    return container;
}

void tnefCloseContainer(TnefContainer* container) {
    if (container == nullptr) return;
    IoObject* input = container->io;
    if (input != nullptr && input->close != nullptr) input->close(input);
    HostAllocator* allocator = tnefHostAllocator(container);
    TnefObjectNode* node = container->objectHead;
    while (node != nullptr) {
        TnefObjectNode* next = node->next;
        if (TnefObject* object = node->object) {
            tnefFree(allocator, object->name);
            tnefFree(allocator, object->attachTitle);
            tnefFreePropRows(container, object->props, object->propCount);
            allocator->free(allocator, object);
        }
        allocator->free(allocator, node);
        node = next;
    }
    if (container->summary != nullptr) {
        for (int32_t i = 0; i < container->summaryCount; ++i) {
            tnefFreeElement(allocator, container->summary[i]);
        }
        allocator->free(allocator, container->summary);
    }
    allocator->free(allocator, container);
}

int32_t tnefGetContainerInfo(TnefContainer* container, ContainerInfo* info, ResultMemory* memory) {
    if (container == nullptr || info == nullptr || !tnefResultMemoryUsable(memory)) {
        return kTnefBadArgument;
    }
    info->subfileCount =
        container->objectCount + ((container->openFlags & kTnefOpenRootEntry) != 0 ? 1 : 0);
    return kTnefOk;
}

TnefObject* tnefObjectAt(TnefContainer* container, int32_t place) {
    int32_t i = 0;
    for (TnefObjectNode* node = container->objectHead; node != nullptr && i < container->objectCount;
         node = node->next, ++i) {
        if (i == place) return node->object;
    }
    return nullptr;
}
