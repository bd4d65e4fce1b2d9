// hostTransformText: 8-bit text made safe inside HTML element text. Only what
// a browser would misread is escaped: "<" always, and "&" where it could
// begin a character reference (followed by "#", by letters or digits that
// end in ";", or by a legacy entity name that needs no ";"). So "Q&A" and
// "AT&T" stay as they are, and ">" and '"' need nothing in element text.
// When the escaped text does not fit the target, as much of it as fits is
// written, cut between characters and never inside an entity.
//
// The text stays in its charset, so the characters are looked for as that
// charset writes them (EBCDIC and UTF-16 included), and bytes inside a
// two-byte character of the ISO-2022 charsets are never taken for one of
// them.
#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <string_view>

#include "host/charset_codecs.h"
#include "host/charset_transcoder.h"
#include "host/charsets.h"
#include "host/posix_host.h"
#include "reader/charset_names.h"

namespace tnefhost {

namespace {

enum Special { kAmpersand, kLessThan, kSpecialCount };
constexpr char kSpecials[kSpecialCount] = {'&', '<'};
constexpr const char* kEntities[kSpecialCount] = {"&amp;", "&lt;"};

// Entity names a browser reads even without the closing ";".
constexpr std::string_view kLegacyEntities[] = {
    "AElig", "AMP", "Aacute", "Acirc", "Agrave", "Aring", "Atilde", "Auml", "COPY", "Ccedil",
    "ETH", "Eacute", "Ecirc", "Egrave", "Euml", "GT", "Iacute", "Icirc", "Igrave", "Iuml", "LT",
    "Ntilde", "Oacute", "Ocirc", "Ograve", "Oslash", "Otilde", "Ouml", "QUOT", "REG", "THORN",
    "Uacute", "Ucirc", "Ugrave", "Uuml", "Yacute", "aacute", "acirc", "acute", "aelig", "agrave",
    "amp", "aring", "atilde", "auml", "brvbar", "ccedil", "cedil", "cent", "copy", "curren", "deg",
    "divide", "eacute", "ecirc", "egrave", "eth", "euml", "frac12", "frac14", "frac34", "gt",
    "iacute", "icirc", "iexcl", "igrave", "iquest", "iuml", "laquo", "lt", "macr", "micro",
    "middot", "nbsp", "not", "ntilde", "oacute", "ocirc", "ograve", "ordf", "ordm", "oslash",
    "otilde", "ouml", "para", "plusmn", "pound", "quot", "raquo", "reg", "sect", "shy", "sup1",
    "sup2", "sup3", "szlig", "thorn", "times", "uacute", "ucirc", "ugrave", "uml", "uuml",
    "yacute", "yen", "yuml"};
// No character reference has a longer name.
constexpr size_t kLongestReference = 32;

constexpr uint8_t kEscape = 0x1B;
constexpr uint8_t kShiftOut = 0x0E;
constexpr uint8_t kShiftIn = 0x0F;

// How the two characters and their entities are written in one charset.
struct EscapeForm {
    CharsetId id = 0;
    size_t unit = 1;            // bytes per code unit: 1, or 2 for UTF-16
    bool asciiBytes = true;     // one byte per unit, ASCII where below 0x80
    uint8_t special[kSpecialCount][2] = {};
    std::string entity[kSpecialCount];
};

EscapeForm asciiForm(CharsetId id) {
    EscapeForm form;
    form.id = id;
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
    if (codec == nullptr) return asciiForm(id);
    EscapeForm form;
    form.id = id;
    form.unit = codec->unitSize;
    for (size_t k = 0; k < kSpecialCount; ++k) {
        uint8_t bytes[32];
        TranscodeResult special =
            transcode(cache, kCharsetUtf8, id, reinterpret_cast<const uint8_t*>(&kSpecials[k]), 1,
                      bytes, sizeof bytes, '?');
        if (!special.complete || special.length != form.unit) return asciiForm(id);
        std::memcpy(form.special[k], bytes, form.unit);
        TranscodeResult entity =
            transcode(cache, kCharsetUtf8, id, reinterpret_cast<const uint8_t*>(kEntities[k]),
                      std::strlen(kEntities[k]), bytes, sizeof bytes, '?');
        if (!entity.complete) return asciiForm(id);
        form.entity[k].assign(reinterpret_cast<const char*>(bytes), entity.length);
    }
    form.asciiBytes = form.unit == 1 && form.special[kAmpersand][0] == '&' &&
                      form.special[kLessThan][0] == '<';
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

// The escaped text, written into the target piece by piece while whole
// pieces fit, and counted in full for a caller that measures.
class EscapedText {
public:
    EscapedText(uint8_t* target, size_t capacity) : target_(target), capacity_(capacity) {}

    void put(const void* bytes, size_t count) {
        needed_ += count;
        if (target_ == nullptr || full_) return;
        if (count > capacity_ - written_) {
            full_ = true;
            return;
        }
        std::memcpy(target_ + written_, bytes, count);
        written_ += count;
    }
    size_t needed() const { return needed_; }
    size_t written() const { return written_; }

private:
    uint8_t* target_;
    size_t capacity_;
    size_t written_ = 0;
    size_t needed_ = 0;
    bool full_ = false;
};

// The special character that the code unit at `at` is, or -1.
int specialAt(const EscapeForm& form, const uint8_t* at) {
    for (size_t k = 0; k < kSpecialCount; ++k) {
        if (std::memcmp(at, form.special[k], form.unit) == 0) return static_cast<int>(k);
    }
    return -1;
}

// The ASCII character that the code unit at `at` is, or 0.
char asciiAt(CharsetCodecCache& cache, const EscapeForm& form, const uint8_t* at) {
    if (form.asciiBytes) return at[0] < 0x80 ? static_cast<char>(at[0]) : '\0';
    uint8_t decoded[8];
    TranscodeResult result = transcode(cache, form.id, kCharsetUtf8, at, form.unit, decoded,
                                       sizeof decoded, '?');
    if (!result.complete || result.length != 1 || decoded[0] >= 0x80) return '\0';
    return static_cast<char>(decoded[0]);
}

bool isAsciiAlnum(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Whether the "&" whose next unit is at `next` could begin a character
// reference in element text.
bool opensReference(CharsetCodecCache& cache, const EscapeForm& form, const uint8_t* next,
                    size_t left) {
    std::string name;
    for (size_t i = 0; i + form.unit <= left && name.size() <= kLongestReference; i += form.unit) {
        char c = asciiAt(cache, form, next + i);
        if (name.empty() && c == '#') return true;
        if (c == ';') return !name.empty();
        if (!isAsciiAlnum(c)) break;
        name += c;
    }
    for (std::string_view legacy : kLegacyEntities) {
        if (name.compare(0, legacy.size(), legacy) == 0) return true;
    }
    return false;
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

// Bytes of the character that starts at `at`, so that a cut text never ends
// inside one: a UTF-8 sequence, a lead and trail byte of the double-byte
// code pages, a surrogate pair of UTF-16.
size_t characterLength(const EscapeForm& form, const uint8_t* at, size_t left) {
    size_t length = form.unit;
    if (form.unit == 2) {
        bool highSurrogate = at[1] >= 0xD8 && at[1] <= 0xDB;
        if (highSurrogate && left >= 4 && at[3] >= 0xDC && at[3] <= 0xDF) length = 4;
    } else if (form.id == kCharsetUtf8 && at[0] >= 0xC0) {
        size_t expected = at[0] >= 0xF0 ? 4 : at[0] >= 0xE0 ? 3 : 2;
        while (length < expected && length < left && (at[length] & 0xC0) == 0x80) ++length;
    } else if (isLeadByte(form.id, at[0]) && left >= 2) {
        length = 2;
    }
    return std::min(length, left);
}

void escapeUnits(CharsetCodecCache& cache, const uint8_t* text, size_t count,
                 const EscapeForm& form, EscapedText& out) {
    Shifting shifting = form.unit == 1 ? shiftingOf(form.id) : Shifting::kNone;
    bool inTwoByteCharacters = false;
    size_t i = 0;
    while (i + form.unit <= count) {
        uint8_t byte = text[i];
        size_t run = 0;  // bytes copied as they are
        if (byte == kEscape &&
            (shifting == Shifting::kDesignation || shifting == Shifting::kShiftOut)) {
            run = escapeSequenceLength(text + i, count - i);
            if (shifting == Shifting::kDesignation && run >= 3) {
                inTwoByteCharacters =
                    !(text[i + 1] == '(' && (text[i + 2] == 'B' || text[i + 2] == 'J'));
            }
        } else if (shifting == Shifting::kShiftOut && (byte == kShiftOut || byte == kShiftIn)) {
            inTwoByteCharacters = byte == kShiftOut;
            run = 1;
        } else if (inTwoByteCharacters && byte > 0x20 && byte < 0x7F) {
            run = std::min<size_t>(2, count - i);  // a two-byte character
        } else if (int special = specialAt(form, text + i);
                   special == kLessThan ||
                   (special == kAmpersand &&
                    opensReference(cache, form, text + i + form.unit, count - i - form.unit))) {
            out.put(form.entity[special].data(), form.entity[special].size());
            i += form.unit;
            continue;
        } else {
            run = characterLength(form, text + i, count - i);
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
    CharsetCodecCache& cache = PosixHost::fromContext(host)->charsetCodecs();
    EscapeForm form = escapeForm(cache, id);
    auto* bytes = static_cast<uint8_t*>(target->bytes);
    EscapedText out(bytes, static_cast<size_t>(target->length));
    escapeUnits(cache, static_cast<const uint8_t*>(source->bytes),
                static_cast<size_t>(source->length), form, out);
    if (bytes != nullptr) {
        target->length = static_cast<int32_t>(out.written());
        return 1;
    }
    if (out.needed() > static_cast<size_t>(INT32_MAX)) {
        target->length = 0;
        return 0;
    }
    target->length = static_cast<int32_t>(out.needed());
    return 1;
}

}  // namespace tnefhost
