// Recoding 8-bit text from one charset into another through the host.
#include "reader/memory.h"
#include "render/plain_text.h"

namespace {

// What the host puts in place of a character the target can't hold.
constexpr uint8_t kReplacement = 0x3F;

}  // namespace

uint8_t* tnefRecodeText(TnefContainer* container, const uint8_t* text, int32_t count,
                        CharsetId from, CharsetId to, int32_t* outCount) {
    *outCount = 0;
    HostContext* host = container->host;
    if (host->hostCharsetToCharset == nullptr) return nullptr;
    HostAllocator* allocator = tnefHostAllocator(container);
    const CharsetId saved = host->currentCharset;
    host->currentCharset = to;

    HostText source{text, count};
    HostTextBuffer target{nullptr, 0};
    host->hostCharsetToCharset(host, from, &source, &target, kReplacement);
    const int32_t needed = target.length;
    auto* buffer = static_cast<uint8_t*>(tnefAlloc(allocator, tnefSizeAdd(needed, 2)));
    if (buffer == nullptr) {
        host->currentCharset = saved;
        return nullptr;
    }
    target.bytes = buffer;
    target.length = needed > 0 ? needed : 0;
    host->hostCharsetToCharset(host, from, &source, &target, kReplacement);
    // Never trust a count beyond the room the host was given.
    int32_t written = target.length;
    if (written > needed) written = needed;
    container->charsetConverted = 1;
    host->currentCharset = saved;

    if (written < 1) {
        allocator->free(allocator, buffer);
        return nullptr;
    }
    *outCount = written;
    return buffer;
}
