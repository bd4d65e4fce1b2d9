// Pieces that every charset back-end of the host shares: where converted
// bytes go, and the reverse look-up of a byte table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "host/charset_codecs.h"

namespace tnefhost {

// Where converted bytes go: the caller's target, or, when measuring, a
// scratch area that is only counted.
class ByteSink {
public:
    ByteSink(uint8_t* target, size_t capacity) : target_(target), capacity_(capacity) {}

    bool measuring() const { return target_ == nullptr; }
    size_t length() const { return length_; }

    // Where the next bytes go, and how many fit there.
    char* window(size_t* room) {
        if (measuring()) {
            *room = sizeof scratch_;
            return reinterpret_cast<char*>(scratch_);
        }
        *room = capacity_ - length_;
        return reinterpret_cast<char*>(target_ + length_);
    }
    void advance(size_t count) { length_ += count; }

    bool append(const uint8_t* bytes, size_t count) {
        size_t room = 0;
        char* at = window(&room);
        if (count > room) return false;
        std::memcpy(at, bytes, count);
        advance(count);
        return true;
    }

private:
    uint8_t* target_;
    size_t capacity_;
    size_t length_ = 0;
    uint8_t scratch_[4096];
};

// The byte of a 256-entry table that stands for `code`; false when none does.
inline bool tableByte(const char16_t* table, char32_t code, uint8_t* byte) {
    if (code == kUnassigned) return false;
    if (code < 0x80 && table[code] == code) {
        *byte = static_cast<uint8_t>(code);
        return true;
    }
    for (size_t b = 0; b < 256; ++b) {
        if (table[b] == code) {
            *byte = static_cast<uint8_t>(b);
            return true;
        }
    }
    return false;
}

// Code points written through a byte table: what the table lacks becomes the
// replacement (its byte in the table, else the raw byte). False when the
// target is full.
inline bool appendTableBytes(const char16_t* table, const char32_t* codePoints, size_t count,
                             uint8_t replacement, ByteSink& sink) {
    for (size_t i = 0; i < count; ++i) {
        uint8_t byte = 0;
        if (!tableByte(table, codePoints[i], &byte) && !tableByte(table, replacement, &byte)) {
            byte = replacement;
        }
        if (!sink.append(&byte, 1)) return false;
    }
    return true;
}

}  // namespace tnefhost
