// The module's status numbers in words.
#include "client/tnef_client.h"

namespace tnefclient {

std::string statusText(int32_t status) {
    const char* words = nullptr;
    switch (status) {
        case kTnefOk: words = "success"; break;
        case kTnefAbsent: words = "absent, or the OLE library can't be loaded"; break;
        case kTnefNoMemory: words = "out of memory, or a stored value of impossible length"; break;
        case kTnefStreamFailure: words = "stream failure: unreadable or malformed data"; break;
        case kTnefNoName: words = "no name can be made, or the OLE data is unusable"; break;
        case kTnefOutputUnusable: words = "the output can't be used"; break;
        case kTnefNoObject: words = "no object at that index"; break;
        case kTnefNoEntryPoint: words = "the OLE library has no entry point"; break;
        case kTnefBadArgument: words = "bad argument"; break;
        default: words = "unknown status"; break;
    }
    return std::string(words) + " (" + std::to_string(status) + ")";
}

}  // namespace tnefclient
