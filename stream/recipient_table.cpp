#include "stream/recipient_table.h"

int32_t tnefBuildRecipientLists(TnefContainer* container, HostAllocator* allocator,
                                TnefObject* message) {
    (void)container;
    (void)allocator;
    (void)message;
    return kTnefOk;
}

int32_t tnefHasAtSign(const uint8_t* text, int32_t length, uint32_t type) {
    (void)type;
    for (int32_t i = 0; i < length; ++i) {
        if (text[i] == '@') return 1;
    }
    return 0;
}
