#include "reader/text_conversions.h"

#include "reader/memory.h"

namespace {

// Puts the charset of one conversion into the host's currentCharset and
// restores what was there when it goes out of scope, on every road. 0 asks
// for the host's default.
class CharsetSelection {
public:
    CharsetSelection(HostContext* host, CharsetId charset)
        : host_(host), saved_(host->currentCharset) {
        host->currentCharset = charset;
        if (charset == kCharsetNone && host->hostSetDefaultCharset != nullptr) {
            host->hostSetDefaultCharset(host, 0);
        }
    }
    ~CharsetSelection() { host_->currentCharset = saved_; }
    CharsetSelection(const CharsetSelection&) = delete;
    CharsetSelection& operator=(const CharsetSelection&) = delete;

private:
    HostContext* host_;
    CharsetId saved_;
};

typedef int32_t (*HostConversion)(HostContext* host, const HostText* source, HostTextBuffer* target,
                                  uint8_t replacement, int32_t flags);

// The length the host needs for `source`; not above 0 when it needs none or
// can't convert.
int32_t measureConversion(HostContext* host, HostConversion convert, const HostText& source,
                          uint8_t replacement) {
    HostTextBuffer target = {nullptr, 0};
    convert(host, &source, &target, replacement, 0);
    return target.length;
}

// Converts into `buffer` of `capacity` bytes; the bytes written, never more
// than the capacity whatever the host reports.
int32_t convertInto(HostContext* host, HostConversion convert, const HostText& source,
                    uint8_t* buffer, int32_t capacity, uint8_t replacement) {
    HostTextBuffer target = {buffer, capacity};
    convert(host, &source, &target, replacement, 0);
    if (target.length < 0) return 0;
    return target.length < capacity ? target.length : capacity;
}

constexpr uint8_t kUnicodeReplacement = 0x20;
constexpr uint8_t kCharsetReplacement = 0x3F;

}  // namespace

uint8_t* tnefCharsetToUnicode(TnefContainer* container, const uint8_t* text, int32_t count,
                              int32_t* outCount, CharsetId source) {
    if (outCount != nullptr) *outCount = 0;
    if (container == nullptr || container->host == nullptr || text == nullptr || count <= 0) {
        return nullptr;
    }
    HostContext* host = container->host;
    HostConversion convert = host->hostCharsetToUnicode;
    if (convert == nullptr) return nullptr;

    CharsetSelection selection(host, source);
    HostText sourceText = {text, count};
    int32_t needed = measureConversion(host, convert, sourceText, kUnicodeReplacement);
    if (needed <= 0) return nullptr;
    auto* buffer =
        static_cast<uint8_t*>(tnefAlloc(tnefHostAllocator(container), tnefSizeAdd(needed, 2)));
    if (buffer == nullptr) return nullptr;
    int32_t written = convertInto(host, convert, sourceText, buffer, needed, kUnicodeReplacement);
    buffer[written] = 0;
    buffer[written + 1] = 0;
    if (outCount != nullptr) *outCount = written;
    return buffer;
}

uint8_t* tnefUnicodeToCharset(TnefContainer* container, const uint8_t* text, int32_t count,
                              int32_t* outCount, CharsetId target) {
    if (outCount != nullptr) *outCount = 0;
    if (container == nullptr || container->host == nullptr || text == nullptr || count <= 0) {
        return nullptr;
    }
    HostContext* host = container->host;
    HostConversion convert = host->hostUnicodeToCharset;
    if (convert == nullptr) return nullptr;

    CharsetSelection selection(host, target);
    HostText sourceText = {text, count};
    int32_t needed = measureConversion(host, convert, sourceText, kCharsetReplacement);
    if (needed <= 0) return nullptr;
    auto* buffer = static_cast<uint8_t*>(tnefAlloc(tnefHostAllocator(container), needed));
    if (buffer == nullptr) return nullptr;
    int32_t written = convertInto(host, convert, sourceText, buffer, needed, kCharsetReplacement);
    if (outCount != nullptr) *outCount = written;
    return buffer;
}
