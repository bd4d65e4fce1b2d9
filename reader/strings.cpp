#include "reader/strings.h"

#include <string.h>

char* tnefCopyText(HostAllocator* allocator, const char* text) {
    size_t length = strlen(text);
    auto* copy = static_cast<char*>(allocator->alloc(allocator, length + 1));
    if (copy != nullptr) memcpy(copy, text, length + 1);
    return copy;
}

int32_t tnefBoundedLength(const char* text, int32_t limit) {
    int32_t length = 0;
    while (length < limit && text[length] != '\0') ++length;
    return length;
}
