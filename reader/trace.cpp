#include "reader/trace.h"

#include <stdarg.h>
#include <stdio.h>

void tnefTrace(const char* text) {
    (void)text;
}

void tnefTracef(const TnefContainer* container, const char* format, ...) {
    if (container == nullptr || container->traceEnabled == 0) return;
    char line[512];
    va_list args;
    va_start(args, format);
    vsnprintf(line, sizeof line, format, args);
    va_end(args);
    tnefTrace(line);
}
