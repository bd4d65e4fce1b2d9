// The trace: diagnostic lines that only exist while a container's
// traceEnabled is set. No operation sets it, so in normal running no line is
// even formatted; when one is, it goes to tnefTrace, which discards it.
#pragma once

#include "reader/host.h"

void tnefTrace(const char* text);

// Formats one line into a local buffer and hands it to tnefTrace, but only
// when the container's trace is enabled.
void tnefTracef(const TnefContainer* container, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
