#pragma once

#include "reader/host.h"

// The extraction of an attachment that holds an OLE object: loads the
// storage library on first use, stages the object's bytes in a scratch
// object and unpacks it into `output`. `*reachedExtraction` tells whether
// the unpacking ran; when it didn't, the status is 1, 16 or 23 and the
// caller returns it without its closing steps.
int32_t tnefExtractOleAttachment(TnefContainer* container, HostAllocator* allocator,
                                 TnefObject* object, IoObject* output, ExtractRequest* request,
                                 bool* reachedExtraction);
