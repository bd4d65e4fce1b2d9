// Text from the module made into UTF-8.
#include <vector>

#include "client/tnef_client.h"
#include "rtf/code_pages.h"

namespace tnefclient {

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

// The charset in which 8-bit text of a stream is read: the given one, or
// windows-1252 where the stream names none or only marks 16-bit strings.
CharsetId readingCharset(CharsetId charset) {
    if (charset == kCharsetNone || charset == kCharsetUnicode || charset == kCharsetUtf8) {
        return kCharsetWindows1252;
    }
    return charset;
}

// Conversion through the host into UTF-8; false when the host can't.
bool convertThroughHost(HostContext* host, std::string_view text, CharsetId from,
                        std::string* out) {
    if (host == nullptr || host->hostCharsetToCharset == nullptr || text.size() > INT32_MAX) {
        return false;
    }
    HostText source{text.data(), static_cast<int32_t>(text.size())};
    CharsetId saved = host->currentCharset;
    host->currentCharset = kCharsetUtf8;
    HostTextBuffer measure{nullptr, 0};
    bool ok = false;
    if (host->hostCharsetToCharset(host, from, &source, &measure, '?') != 0 &&
        measure.length > 0) {
        std::vector<char> buffer(static_cast<size_t>(measure.length));
        HostTextBuffer target{buffer.data(), measure.length};
        if (host->hostCharsetToCharset(host, from, &source, &target, '?') != 0 &&
            target.length >= 0 && target.length <= measure.length) {
            out->assign(buffer.data(), static_cast<size_t>(target.length));
            ok = isValidUtf8(*out);
        }
    }
    host->currentCharset = saved;
    return ok;
}

}  // namespace

size_t utf8CharLength(std::string_view text, bool* cut) {
    if (cut != nullptr) *cut = false;
    if (text.empty()) return 0;
    auto c = static_cast<uint8_t>(text[0]);
    size_t extra = 0;
    uint32_t cp = 0;
    if (c < 0x80) return 1;
    if (c >= 0xC2 && c <= 0xDF) {
        extra = 1, cp = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
        extra = 2, cp = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
        extra = 3, cp = c & 0x07;
    } else {
        return 0;
    }
    for (size_t k = 1; k <= extra; ++k) {
        if (k == text.size()) {
            // The text ends inside the character; the bytes so far may
            // still begin a valid one (its range is checked on the whole).
            if (cut != nullptr) *cut = true;
            return 0;
        }
        auto d = static_cast<uint8_t>(text[k]);
        if ((d & 0xC0) != 0x80) return 0;
        cp = (cp << 6) | (d & 0x3F);
    }
    // Overlong forms, surrogates and code points past U+10FFFF.
    if ((extra == 2 && cp < 0x800) || (extra == 3 && (cp < 0x10000 || cp > 0x10FFFF)) ||
        (cp >= 0xD800 && cp <= 0xDFFF)) {
        return 0;
    }
    return extra + 1;
}

bool isValidUtf8(std::string_view text) {
    while (!text.empty()) {
        size_t length = utf8CharLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string utf16leToUtf8(const uint8_t* bytes, size_t length) {
    std::string out;
    out.reserve(length);
    size_t units = length / 2;
    for (size_t i = 0; i < units; ++i) {
        uint32_t unit = bytes[2 * i] | (static_cast<uint32_t>(bytes[2 * i + 1]) << 8);
        if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < units) {
            uint32_t low = bytes[2 * i + 2] | (static_cast<uint32_t>(bytes[2 * i + 3]) << 8);
            if (low >= 0xDC00 && low <= 0xDFFF) {
                tnefrtf::appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
                ++i;
                continue;
            }
        }
        tnefrtf::appendUtf8(out, (unit >= 0xD800 && unit <= 0xDFFF) ? kReplacement : unit);
    }
    return out;
}

std::string eightBitToUtf8(HostContext* host, std::string_view text, CharsetId charset) {
    if (isValidUtf8(text)) return std::string(text);
    std::string out;
    if (convertThroughHost(host, text, readingCharset(charset), &out)) return out;
    // A host without the service: each byte as the code point of its value,
    // which is right for ASCII and Latin-1 and keeps the text readable.
    out.clear();
    for (char c : text) tnefrtf::appendUtf8(out, static_cast<uint8_t>(c));
    return out;
}

std::string_view withoutTrailingNuls(std::string_view text, bool sixteenBit) {
    if (sixteenBit) {
        if (text.size() % 2 != 0) text.remove_suffix(1);
        while (text.size() >= 2 && text[text.size() - 1] == '\0' && text[text.size() - 2] == '\0') {
            text.remove_suffix(2);
        }
    } else {
        while (!text.empty() && text.back() == '\0') text.remove_suffix(1);
    }
    return text;
}

}  // namespace tnefclient
