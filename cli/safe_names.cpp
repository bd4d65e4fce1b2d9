#include "cli/safe_names.h"

#include <array>
#include <cstdint>

namespace tnefcli {

namespace {

constexpr size_t kMaxKeptExtension = 16;

// Length of the UTF-8 sequence that starts with `lead` (1 for stray bytes).
size_t sequenceLength(uint8_t lead) {
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    if (lead >= 0xE0) return lead <= 0xEF ? 3 : 1;
    if (lead >= 0xC2) return 2;
    return 1;
}

uint32_t decode(std::string_view s, size_t at, size_t length) {
    auto b = [&](size_t k) { return static_cast<uint32_t>(static_cast<uint8_t>(s[at + k])); };
    switch (length) {
        case 2: return ((b(0) & 0x1F) << 6) | (b(1) & 0x3F);
        case 3: return ((b(0) & 0x0F) << 12) | ((b(1) & 0x3F) << 6) | (b(2) & 0x3F);
        case 4:
            return ((b(0) & 0x07) << 18) | ((b(1) & 0x3F) << 12) | ((b(2) & 0x3F) << 6) |
                   (b(3) & 0x3F);
        default: return b(0);
    }
}

// True when a sequence of `length` bytes that decodes to `cp` is UTF-8:
// not an overlong form, not a surrogate, not past U+10FFFF.
bool wellFormed(uint32_t cp, size_t length) {
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (length == 1) return cp < 0x80;
    return cp >= kSmallest[length] && cp <= 0x10FFFF && (cp < 0xD800 || cp > 0xDFFF);
}

bool forbiddenCodePoint(uint32_t cp) {
    if (cp < 0x20 || cp == 0x7F || (cp >= 0x80 && cp <= 0x9F)) return true;  // controls
    if ((cp >= 0x202A && cp <= 0x202E) || (cp >= 0x2066 && cp <= 0x2069)) return true;  // bidi
    switch (cp) {
        case '/': case '\\': case '<': case '>': case ':': case '"': case '|': case '?': case '*':
            return true;
        default: return false;
    }
}

// Each character checked; what is forbidden becomes '_'. Bytes that are not
// UTF-8 also become '_', so the result is always valid UTF-8.
std::string replaceForbidden(std::string_view name) {
    std::string out;
    out.reserve(name.size());
    size_t i = 0;
    while (i < name.size()) {
        size_t length = sequenceLength(static_cast<uint8_t>(name[i]));
        bool whole = i + length <= name.size();
        for (size_t k = 1; whole && k < length; ++k) {
            whole = (static_cast<uint8_t>(name[i + k]) & 0xC0) == 0x80;
        }
        const uint32_t cp = whole ? decode(name, i, length) : 0;
        if (!whole || !wellFormed(cp, length)) {
            out += '_';
            ++i;
            continue;
        }
        if (forbiddenCodePoint(cp)) {
            out += '_';
        } else {
            out.append(name.substr(i, length));
        }
        i += length;
    }
    return out;
}

std::string trimmed(std::string name) {
    size_t start = name.find_first_not_of(' ');
    if (start == std::string::npos) return {};
    name.erase(0, start);
    while (!name.empty() && (name.back() == '.' || name.back() == ' ')) name.pop_back();
    for (char& c : name) {
        if (c != '.') break;
        c = '_';
    }
    return name;
}

char upper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

bool isDeviceName(const std::string& name) {
    std::string stem = name.substr(0, name.find('.'));
    while (!stem.empty() && stem.back() == ' ') stem.pop_back();
    for (char& c : stem) c = upper(c);
    static const std::array<const char*, 6> plain = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    for (const char* device : plain) {
        if (stem == device) return true;
    }
    return stem.size() == 4 && (stem.compare(0, 3, "COM") == 0 || stem.compare(0, 3, "LPT") == 0) &&
           stem[3] >= '0' && stem[3] <= '9';
}

// Cuts `text` to at most `limit` bytes without splitting a character.
std::string cutAtBoundary(const std::string& text, size_t limit) {
    if (text.size() <= limit) return text;
    size_t end = limit;
    while (end > 0 && (static_cast<uint8_t>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
}

std::string shortened(const std::string& name) {
    if (name.size() <= kMaxSafeNameBytes) return name;
    size_t dot = name.rfind('.');
    std::string extension;
    if (dot != std::string::npos && dot > 0 && name.size() - dot <= kMaxKeptExtension) {
        extension = name.substr(dot);
    }
    std::string stem = name.substr(0, name.size() - extension.size());
    return cutAtBoundary(stem, kMaxSafeNameBytes - extension.size()) + extension;
}

std::string asciiFolded(std::string text) {
    for (char& c : text) c = upper(c);
    return text;
}

}  // namespace

std::string safeFileName(std::string_view name, std::string_view fallback) {
    std::string safe = trimmed(replaceForbidden(name));
    if (safe.empty()) safe = trimmed(replaceForbidden(fallback));
    if (safe.empty()) safe = "subfile";
    if (isDeviceName(safe)) safe.insert(safe.begin(), '_');
    return trimmed(shortened(safe));
}

bool UniqueNames::taken(const std::string& name) const {
    return used_.count(asciiFolded(name)) != 0;
}

std::string UniqueNames::claim(const std::string& name) {
    std::string candidate = name;
    if (taken(candidate)) {
        size_t dot = name.rfind('.');
        if (dot == 0 || dot == std::string::npos) dot = name.size();
        std::string stem = name.substr(0, dot);
        std::string extension = name.substr(dot);
        for (unsigned n = 1; taken(candidate); ++n) {
            candidate = stem + " (" + std::to_string(n) + ")" + extension;
        }
    }
    used_.insert(asciiFolded(candidate));
    return candidate;
}

}  // namespace tnefcli
