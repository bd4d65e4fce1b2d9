#include "rtf/text_decoder.h"

#include <cstring>

namespace tnefrtf {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
// Decoded pairs of double-byte code pages, and tables of code pages, kept
// at most; a document that needs more starts them again.
constexpr size_t kMaxCachedPairs = 1 << 16;
constexpr size_t kMaxCachedTables = 64;

// Printable ASCII and the tab: bytes that stand for themselves.
bool plain(uint8_t byte) { return (byte >= 0x20 && byte < 0x80) || byte == '\t'; }

bool keepsControl(char32_t code) { return code >= 0x20 || code == '\t'; }

// The length of the UTF-8 sequence `lead` opens; 0 for no lead byte.
uint8_t utf8Length(uint8_t lead) {
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 0;
}

// The code point of a complete UTF-8 sequence, or U+FFFD when it is an
// overlong form, a surrogate or above U+10FFFF.
char32_t utf8Value(const uint8_t* bytes, uint8_t length) {
    char32_t code = bytes[0] & (0x7F >> length);
    for (uint8_t i = 1; i < length; ++i) code = code << 6 | (bytes[i] & 0x3F);
    static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kSmallest[length] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
        return kReplacement;
    }
    return code;
}

// The list bullets that symbol fonts put in an upper half: Symbol's bullet
// and Wingdings' square. The rest of those fonts' pictures have no letters.
char32_t symbolFontCharacter(uint8_t byte) {
    if (byte == 0xB7) return 0x2022;
    if (byte == 0xA7) return 0x25AA;
    return kReplacement;
}

}  // namespace

std::string_view TextDecoder::bytes(std::string_view in, uint32_t codePage) {
    out_.clear();
    if (sequenceLength_ == 0 && highSurrogate_ == 0) {
        size_t run = 0;
        while (run < in.size() && plain(static_cast<uint8_t>(in[run]))) ++run;
        if (run == in.size()) return in;
        out_.assign(in.data(), run);
        in.remove_prefix(run);
    }
    if (highSurrogate_ != 0) flushInto();
    for (char c : in) {
        auto byte = static_cast<uint8_t>(c);
        if (sequenceLength_ != 0) {
            if (sequenceCodePage_ == codePage &&
                (codePage != kCodePageUtf8 || (byte & 0xC0) == 0x80)) {
                continueSequence(byte);
                continue;
            }
            flushInto();
        }
        if (byte < 0x80) {
            if (plain(byte)) out_ += static_cast<char>(byte);
        } else {
            startSequence(byte, codePage);
        }
    }
    return out_;
}

std::string_view TextDecoder::codeUnit(uint16_t unit) {
    out_.clear();
    if (sequenceLength_ != 0) flushInto();
    if (unit >= 0xDC00 && unit < 0xE000 && highSurrogate_ != 0) {
        appendUtf8(out_, 0x10000 + ((char32_t{highSurrogate_} - 0xD800) << 10) + (unit - 0xDC00));
        highSurrogate_ = 0;
        return out_;
    }
    flushInto();
    if (unit >= 0xD800 && unit < 0xDC00) {
        highSurrogate_ = unit;
    } else if (keepsControl(unit)) {
        appendUtf8(out_, unit);  // a lone low surrogate becomes U+FFFD
    }
    return out_;
}

std::string_view TextDecoder::character(char32_t code) {
    out_.clear();
    flushInto();
    if (keepsControl(code)) appendUtf8(out_, code);
    return out_;
}

std::string_view TextDecoder::flush() {
    out_.clear();
    flushInto();
    return out_;
}

void TextDecoder::flushInto() {
    if (sequenceLength_ != 0 || highSurrogate_ != 0) appendUtf8(out_, kReplacement);
    sequenceLength_ = 0;
    highSurrogate_ = 0;
}

void TextDecoder::startSequence(uint8_t byte, uint32_t codePage) {
    uint8_t expected = 0;
    if (codePage == kCodePageUtf8) {
        expected = utf8Length(byte);
        if (expected == 0) {
            appendUtf8(out_, kReplacement);
            return;
        }
    } else if (codePage != kCodePageSymbol && decoder_.isLeadByte(codePage, byte)) {
        expected = 2;
    } else {
        putSingle(byte, codePage);
        return;
    }
    sequence_[0] = byte;
    sequenceLength_ = 1;
    sequenceExpected_ = expected;
    sequenceCodePage_ = codePage;
}

void TextDecoder::continueSequence(uint8_t byte) {
    sequence_[sequenceLength_++] = byte;
    if (sequenceLength_ == sequenceExpected_) endSequence();
}

void TextDecoder::endSequence() {
    uint8_t length = sequenceLength_;
    sequenceLength_ = 0;
    if (sequenceCodePage_ == kCodePageUtf8) {
        char32_t code = utf8Value(sequence_, length);
        if (code == kReplacement) {
            appendUtf8(out_, kReplacement);
        } else {
            out_.append(reinterpret_cast<const char*>(sequence_), length);
        }
        return;
    }
    uint64_t key = uint64_t{sequenceCodePage_} << 16 | uint64_t{sequence_[0]} << 8 | sequence_[1];
    auto found = pairs_.find(key);
    if (found == pairs_.end()) {
        if (pairs_.size() >= kMaxCachedPairs) pairs_.clear();
        Utf8Char decoded{{}, kNotDecoded};
        putDecoded(decoded, sequenceCodePage_,
                   std::string_view(reinterpret_cast<const char*>(sequence_), 2));
        found = pairs_.emplace(key, decoded).first;
    }
    out_.append(found->second.bytes, found->second.length);
}

void TextDecoder::putSingle(uint8_t byte, uint32_t codePage) {
    if (codePage == kCodePageSymbol) {
        appendUtf8(out_, symbolFontCharacter(byte));
        return;
    }
    Utf8Char& slot = tableFor(codePage).high[byte - 0x80];
    if (slot.length == kNotDecoded) {
        char single = static_cast<char>(byte);
        putDecoded(slot, codePage, std::string_view(&single, 1));
    }
    out_.append(slot.bytes, slot.length);
}

// Decodes one character into `slot`: what the decoder gives when it is one
// character of at most four bytes, U+FFFD otherwise.
void TextDecoder::putDecoded(Utf8Char& slot, uint32_t codePage, std::string_view bytes) {
    scratch_.clear();
    bool decoded = decoder_.decode(codePage, bytes, scratch_);
    if (!decoded || scratch_.empty() || scratch_.size() > sizeof slot.bytes) {
        scratch_.clear();
        appendUtf8(scratch_, kReplacement);
    }
    // A decoded control character is no text either.
    if (scratch_.size() == 1 && !keepsControl(static_cast<uint8_t>(scratch_[0]))) scratch_.clear();
    std::memcpy(slot.bytes, scratch_.data(), scratch_.size());
    slot.length = static_cast<uint8_t>(scratch_.size());
}

TextDecoder::ByteTable& TextDecoder::tableFor(uint32_t codePage) {
    if (lastTable_ != nullptr && lastTable_->codePage == codePage) return *lastTable_;
    for (auto& table : tables_) {
        if (table->codePage == codePage) return *(lastTable_ = table.get());
    }
    if (tables_.size() >= kMaxCachedTables) tables_.clear();
    auto table = std::make_unique<ByteTable>();
    table->codePage = codePage;
    for (Utf8Char& slot : table->high) slot.length = kNotDecoded;
    tables_.push_back(std::move(table));
    return *(lastTable_ = tables_.back().get());
}

}  // namespace tnefrtf
