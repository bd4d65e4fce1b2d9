#include "client/element_values.h"

#include <cstdio>
#include <cstring>

namespace tnefclient {

namespace {

// A readable line shows this much of a binary value; JSON shows all of it.
constexpr size_t kShownBinaryBytes = 32;

std::string hex(const std::vector<uint8_t>& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (uint8_t b : bytes) {
        out += digits[b >> 4];
        out += digits[b & 0x0F];
    }
    return out;
}

int64_t littleEndian64(const std::vector<uint8_t>& bytes) {
    uint64_t value = 0;
    for (size_t i = bytes.size() < 8 ? bytes.size() : 8; i > 0; --i) value = (value << 8) | bytes[i - 1];
    return static_cast<int64_t>(value);
}

template <typename T>
T floatOf(const std::vector<uint8_t>& bytes) {
    T value{};
    if (bytes.size() >= sizeof value) std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

}  // namespace

const char* elementTypeName(const Element& element) {
    if (!elementHasValue(element)) return "none";
    switch (element.type) {
        case kElementBoolean: return "boolean";
        case kElementBinary: return "binary";
        case kElementInteger: return "integer";
        case kElementInt64: return "int64";
        case kElementText8: return "text8";
        case kElementText16: return "text16";
        case kElementTime: return "time";
        case kElementFloat: return "float";
        case kElementDouble: return "double";
        default: return "none";
    }
}

nlohmann::ordered_json elementJson(HostContext* host, const Element& element, CharsetId charset) {
    if (!elementHasValue(element)) return nullptr;
    switch (element.type) {
        case kElementBoolean: return element.number != 0;
        case kElementInteger: return element.number;
        case kElementInt64: return littleEndian64(element.bytes);
        case kElementText8:
        case kElementText16:
        case kElementTime: {
            auto text = elementString(host, element, charset);
            return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json(nullptr);
        }
        case kElementFloat: return floatOf<float>(element.bytes);
        case kElementDouble: return floatOf<double>(element.bytes);
        case kElementBinary: return hex(element.bytes);
        default: return nullptr;
    }
}

std::string elementText(HostContext* host, const Element& element, CharsetId charset) {
    if (element.type == kElementBinary && element.bytes.size() > kShownBinaryBytes) {
        std::vector<uint8_t> head(element.bytes.begin(), element.bytes.begin() + kShownBinaryBytes);
        return hex(head) + "... (" + std::to_string(element.bytes.size()) + " bytes)";
    }
    nlohmann::ordered_json value = elementJson(host, element, charset);
    if (value.is_null()) return {};
    if (value.is_string()) return value.get<std::string>();
    return value.dump();
}

std::string tagText(uint32_t tag) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", tag);
    return text;
}

}  // namespace tnefclient
