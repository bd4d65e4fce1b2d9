// hostTransformText: 8-bit text made safe inside an HTML document. "&", "<",
// ">" and '"' become entities, everything else is copied. The text stays in
// its charset, so the characters are looked for as that charset writes them
// (EBCDIC and UTF-16 included), and bytes inside a two-byte character of the
// ISO-2022 charsets are never taken for one of them. The double-byte code
// pages of ids 1 to 4 need no such care: their trail bytes are all 0x40 or
// above, beyond the four characters.
#include <algorithm>
#include <climits>
#include <cstring>
#include <string>

#include "host/charset_codecs.h"
#include "host/charset_transcoder.h"
#include "host/charsets.h"
#include "host/posix_host.h"
#include "reader/charset_names.h"

namespace tnefhost {

namespace {

constexpr size_t kSpecialCount = 4;
constexpr char kSpecials[kSpecialCount] = {'&', '<', '>', '"'};
constexpr const char* kEntities[kSpecialCount] = {"&amp;", "&lt;", "&gt;", "&quot;"};

constexpr uint8_t kEscape = 0x1B;
constexpr uint8_t kShiftOut = 0x0E;
constexpr uint8_t kShiftIn = 0x0F;

// How the four characters and their entities are written in one charset.
struct EscapeForm {
    size_t unit = 1;  // bytes per code unit: 1, or 2 for UTF-16
    uint8_t special[kSpecialCount][2] = {};
    std::string entity[kSpecialCount];
};

EscapeForm asciiForm() {
    EscapeForm form;
    for (size_t k = 0; k < kSpecialCount; ++k) {
        form.special[k][0] = static_cast<uint8_t>(kSpecials[k]);
        form.entity[k] = kEntities[k];
    }
    return form;
}

// The form of charset `id`, worked out through its encoder. Where the
// encoder writes one of the characters as anything but one code unit (UTF-7
// writes them in base64, say), or the charset can't be converted, the text
// is taken as ASCII-compatible.
EscapeForm escapeForm(CharsetCodecCache& cache, CharsetId id) {
    const CharsetCodec* codec = charsetCodec(id);
    if (codec == nullptr) return asciiForm();
    EscapeForm form;
    form.unit = codec->unitSize;
    for (size_t k = 0; k < kSpecialCount; ++k) {
        uint8_t bytes[32];
        TranscodeResult special =
            transcode(cache, kCharsetUtf8, id, reinterpret_cast<const uint8_t*>(&kSpecials[k]), 1,
                      bytes, sizeof bytes, '?');
        if (!special.complete || special.length != form.unit) return asciiForm();
        std::memcpy(form.special[k], bytes, form.unit);
        TranscodeResult entity =
            transcode(cache, kCharsetUtf8, id, reinterpret_cast<const uint8_t*>(kEntities[k]),
                      std::strlen(kEntities[k]), bytes, sizeof bytes, '?');
        if (!entity.complete) return asciiForm();
        form.entity[k].assign(reinterpret_cast<const char*>(bytes), entity.length);
    }
    return form;
}

// How an ISO-2022 charset leaves and re-enters ASCII.
enum class Shifting {
    kNone,
    kDesignation,  // ESC ( B and ESC ( J designate ASCII, any other leaves it (ISO-2022-JP)
    kShiftOut,     // SO leaves ASCII, SI returns (ISO-2022-CN and -KR)
};

constexpr CharsetId kIso2022Jp = tnefCharsetByName("iso-2022-jp");
constexpr CharsetId kIso2022Cn = tnefCharsetByName("iso-2022-cn");
constexpr CharsetId kIso2022Kr = tnefCharsetByName("iso-2022-kr");

Shifting shiftingOf(CharsetId id) {
    if (id == kIso2022Jp) return Shifting::kDesignation;
    if (id == kIso2022Cn || id == kIso2022Kr) return Shifting::kShiftOut;
    return Shifting::kNone;
}

// The escaped text, written into the target while it fits and counted all
// the same.
class EscapedText {
public:
    EscapedText(uint8_t* target, size_t capacity) : target_(target), capacity_(capacity) {}

    void put(const void* bytes, size_t count) {
        if (target_ != nullptr && length_ <= capacity_ && count <= capacity_ - length_) {
            std::memcpy(target_ + length_, bytes, count);
        }
        length_ += count;
    }
    size_t length() const { return length_; }

private:
    uint8_t* target_;
    size_t capacity_;
    size_t length_ = 0;
};

// The special character that the code unit at `at` is, or -1.
int specialAt(const EscapeForm& form, const uint8_t* at) {
    for (size_t k = 0; k < kSpecialCount; ++k) {
        if (std::memcmp(at, form.special[k], form.unit) == 0) return static_cast<int>(k);
    }
    return -1;
}

// Length of the escape sequence at `at`: ESC, intermediate bytes, a final
// byte; a single shift (ESC N, ESC O) takes the two bytes of its character
// along.
size_t escapeSequenceLength(const uint8_t* at, size_t left) {
    size_t length = 1;
    while (length < left && at[length] >= 0x20 && at[length] <= 0x2F) ++length;
    if (length < left) {
        bool singleShift = length == 1 && (at[1] == 'N' || at[1] == 'O');
        ++length;
        if (singleShift) length += 2;
    }
    return std::min(length, left);
}

void escapeUnits(const uint8_t* text, size_t count, CharsetId id, const EscapeForm& form,
                 EscapedText& out) {
    Shifting shifting = form.unit == 1 ? shiftingOf(id) : Shifting::kNone;
    bool inTwoByteCharacters = false;
    size_t i = 0;
    while (i + form.unit <= count) {
        uint8_t byte = text[i];
        size_t run = form.unit;  // bytes copied as they are
        if (byte == kEscape &&
            (shifting == Shifting::kDesignation || shifting == Shifting::kShiftOut)) {
            run = escapeSequenceLength(text + i, count - i);
            if (shifting == Shifting::kDesignation && run >= 3) {
                inTwoByteCharacters =
                    !(text[i + 1] == '(' && (text[i + 2] == 'B' || text[i + 2] == 'J'));
            }
        } else if (shifting == Shifting::kShiftOut && (byte == kShiftOut || byte == kShiftIn)) {
            inTwoByteCharacters = byte == kShiftOut;
        } else if (inTwoByteCharacters && byte > 0x20 && byte < 0x7F) {
            // Half of a two-byte character.
        } else if (int special = specialAt(form, text + i); special >= 0) {
            out.put(form.entity[special].data(), form.entity[special].size());
            i += form.unit;
            continue;
        }
        out.put(text + i, run);
        i += run;
    }
    if (i < count) out.put(text + i, count - i);  // a last odd byte of UTF-16
}

}  // namespace

int32_t escapeHtmlText(HostContext* host, const HostText* source, HostTextBuffer* target, int32_t) {
    if (host == nullptr || target == nullptr) return 0;
    if (!usableSource(source) || !usableTarget(target)) {
        target->length = 0;
        return 0;
    }
    CharsetId id = effectiveCharset(host, host->currentCharset);
    EscapeForm form = escapeForm(PosixHost::fromContext(host)->charsetCodecs(), id);
    auto* bytes = static_cast<uint8_t*>(target->bytes);
    size_t capacity = static_cast<size_t>(target->length);
    EscapedText out(bytes, capacity);
    escapeUnits(static_cast<const uint8_t*>(source->bytes), static_cast<size_t>(source->length), id,
                form, out);
    // Text that doesn't fit whole is never handed out: a cut entity or
    // unescaped remainder would be unsafe.
    if (out.length() > static_cast<size_t>(INT32_MAX) ||
        (bytes != nullptr && out.length() > capacity)) {
        target->length = 0;
        return 0;
    }
    target->length = static_cast<int32_t>(out.length());
    return 1;
}

}  // namespace tnefhost
