// The six operations of the reader interface.
#pragma once

#include "reader/host.h"

TnefContainer* tnefOpenContainer(IoObject* input, HostContext* host, uint32_t flags,
                                 int32_t unused1, intptr_t unused2, int32_t* status);
void tnefCloseContainer(TnefContainer* container);
int32_t tnefGetContainerInfo(TnefContainer* container, ContainerInfo* info, ResultMemory* memory);
int32_t tnefGetSubfileInfo(TnefContainer* container, int32_t index, SubfileInfo* info,
                           ResultMemory* memory);
int32_t tnefGetSubfileMetadata(TnefContainer* container, int32_t index, int32_t requestCount,
                               MetadataRequest** requests, MetadataResult* result,
                               ResultMemory* memory);
int32_t tnefExtractSubfile(TnefContainer* container, int32_t index, IoObject* output,
                           ExtractRequest* request, ResultMemory* memory, uint32_t flags);

// True when the memory record and both of its words are set.
inline bool tnefResultMemoryUsable(const ResultMemory* memory) {
    return memory != nullptr && memory->owner != nullptr && memory->allocator != nullptr;
}

// The object at a place in the list, or null.
TnefObject* tnefObjectAt(TnefContainer* container, int32_t place);
