#pragma once

#include "reader/host.h"

// Unpacks the OLE object held in `tempIo` (open) into `outputIo`: the
// payload stream named by the descriptors, the path of a linked file, or
// else the whole object. Strings for the request come from `allocator`.
int32_t oleExtractSubFileFromOleStream(HostContext* host, HostAllocator* allocator,
                                       OleInterface* ole, IoObject* tempIo, IoObject* outputIo,
                                       ExtractRequest* request);
