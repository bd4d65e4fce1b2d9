#include "stream/property_block.h"

int32_t tnefValueLayout(uint32_t type) {
    switch (type) {
        case kPtI2:
        case kPtLong:
        case kPtFloat:
        case kPtError:
        case kPtBoolean:
            return 4;
        case kPtDouble:
        case kPtCurrency:
        case kPtAppTime:
        case kPtI8:
        case kPtSysTime:
            return 8;
        case kPtClsid:
            return 16;
        case kPtUnspecified:
        case kPtObject:
        case kPtString8:
        case kPtUnicode:
        case kPtBinary:
            return kTnefCountedValue;
        default:
            return 0;
    }
}

bool tnefTypeAlwaysCounted(uint32_t type) {
    return type == kPtObject || type == kPtString8 || type == kPtUnicode || type == kPtBinary;
}
