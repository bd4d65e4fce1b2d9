#include "ole/ole_branch.h"

#include <string.h>

#include "ole/ole_extraction.h"
#include "render/raw_copy.h"

namespace {

constexpr char kLibraryName[] = "zdolefio.dll";
constexpr char kEntryName[] = "GetOLEInterface";

bool tableComplete(const OleInterface& ole) {
    return ole.openStorage != nullptr && ole.findStream != nullptr &&
           ole.closeStorage != nullptr && ole.resetStream != nullptr &&
           ole.openStream != nullptr && ole.closeStream != nullptr;
}

// Loads the library once per container and fills the table in place. A
// library without the entry point keeps its handle; the table stays empty
// and every later OLE extraction of the container looks for the entry again.
int32_t prepareLibrary(TnefContainer* container) {
    HostContext* host = container->host;
    if (container->oleLibrary == nullptr) {
        if (host->hostLoadLibrary == nullptr ||
            host->hostLoadLibrary(host, kLibraryName, &container->oleLibrary) == 0) {
            container->oleLibrary = nullptr;
            return kTnefAbsent;
        }
    }
    if (tableComplete(container->ole)) return kTnefOk;
    void* entry = host->hostGetProcAddress != nullptr
                      ? host->hostGetProcAddress(host, container->oleLibrary, kEntryName)
                      : nullptr;
    if (entry == nullptr) return kTnefNoEntryPoint;
    reinterpret_cast<GetOleInterfaceFn>(entry)(&container->ole);
    if (!tableComplete(container->ole)) {
        memset(&container->ole, 0, sizeof container->ole);
        return kTnefNoEntryPoint;
    }
    return kTnefOk;
}

void destroy(IoObject* io) {
    if (io != nullptr && io->destroy != nullptr) io->destroy(io);
}

}  // namespace

int32_t tnefExtractOleAttachment(TnefContainer* container, HostAllocator* allocator,
                                 TnefObject* object, IoObject* output, ExtractRequest* request,
                                 bool* reachedExtraction) {
    *reachedExtraction = false;
    HostContext* host = container->host;
    int32_t status = prepareLibrary(container);
    if (status != kTnefOk) return status;

    IoObject* wrapper =
        host->hostWrapOutputIo != nullptr ? host->hostWrapOutputIo(host, output) : nullptr;
    if (wrapper == nullptr) return kTnefOutputUnusable;
    IoObject* tempIo =
        host->hostCreateTempIo != nullptr ? host->hostCreateTempIo(host, nullptr, "w+b") : nullptr;
    if (tempIo == nullptr) {
        destroy(wrapper);
        return kTnefOutputUnusable;
    }
    if (tempIo->open == nullptr || tempIo->open(tempIo) == 0) {
        destroy(wrapper);
        destroy(tempIo);
        return kTnefOutputUnusable;
    }
    tnefCopyInputRange(container, object->dataPos, object->dataSize, tempIo);

    *reachedExtraction = true;
    status = oleExtractSubFileFromOleStream(host, allocator, &container->ole, tempIo, wrapper,
                                            request);
    destroy(wrapper);
    destroy(tempIo);
    return status;
}
