// Metadata elements read as text: strings as UTF-8, times in ISO 8601.
#include "client/tnef_client.h"

namespace tnefclient {

bool elementHasValue(const Element& element) {
    if (!element.hasValue || element.type == kElementNone) return false;
    switch (element.type) {
        case kElementBoolean:
        case kElementInteger:
        case kElementBinary:
        case kElementText8:
        case kElementText16: return true;
        default: return !element.bytes.empty();  // fixed-size values need their bytes
    }
}

std::optional<std::string> elementString(HostContext* host, const Element& element,
                                         CharsetId charset) {
    if (!elementHasValue(element)) return std::nullopt;
    std::string_view raw(reinterpret_cast<const char*>(element.bytes.data()), element.bytes.size());
    switch (element.type) {
        case kElementText16: {
            raw = withoutTrailingNuls(raw, true);
            return utf16leToUtf8(reinterpret_cast<const uint8_t*>(raw.data()), raw.size());
        }
        case kElementText8: return eightBitToUtf8(host, withoutTrailingNuls(raw, false), charset);
        case kElementTime: return fileTimeToIso(element.bytes.data());
        default: return std::nullopt;
    }
}

}  // namespace tnefclient
