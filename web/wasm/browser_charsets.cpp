// The host's charset conversions in the browser, in place of the POSIX
// host's iconv back-end: the same transcode() contract (host/
// charset_transcoder.h), with the routes of browser_charsets.h.
#include "web/wasm/browser_charsets.h"

#include <algorithm>
#include <memory>

#include "host/byte_sink.h"
#include "host/charset_codecs.h"
#include "host/charset_transcoder.h"
#include "host/posix_host.h"
#include "web/wasm/byte_tables.h"

extern "C" {
// web/wasm/browser_charsets.js
int tnefDecodeBegin(const char* label);
int tnefDecodeNext(const uint8_t* bytes, int length, char32_t* out, int last);
int tnefEncodeCodePoint(const char* label, char32_t code, uint8_t* out);
}

namespace tnefweb {

namespace {

struct BrowserCharset {
    CharsetId id;
    const char* label;
};

// The multi-byte charsets of the table under the names TextDecoder knows.
// The browser's "shift_jis", "gbk", "big5" and "euc-kr" are code pages 932,
// 936, 950 (with the Hong Kong additions) and 949, as the ids 1 to 4 mean;
// EUC-CN is a subset of GBK. UTF-7, ISO-2022-CN and ISO-2022-KR have no
// decoder in browsers, and so no route.
constexpr BrowserCharset kBrowserCharsets[] = {
    {1, "shift_jis"}, {2, "gbk"},         {3, "big5"},   {4, "euc-kr"},
    {55, "iso-2022-jp"}, {66, "euc-jp"},  {67, "gbk"},   {68, "big5"},
    {69, "euc-kr"},   {94, "gb18030"},
};

constexpr const char* kUtf8Label = "utf-8";
constexpr const char* kUtf16leLabel = "utf-16le";
constexpr const char* kEucJpLabel = "euc-jp";

constexpr size_t kChunkBytes = 16384;
// Room for the code points of one chunk and what a flush adds.
constexpr size_t kChunkCodePoints = kChunkBytes + 4;

bool appendUtf8(char32_t code, tnefhost::ByteSink& sink) {
    uint8_t bytes[4];
    size_t count = 0;
    if (code < 0x80) {
        bytes[count++] = static_cast<uint8_t>(code);
    } else if (code < 0x800) {
        bytes[count++] = static_cast<uint8_t>(0xC0 | (code >> 6));
        bytes[count++] = static_cast<uint8_t>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        bytes[count++] = static_cast<uint8_t>(0xE0 | (code >> 12));
        bytes[count++] = static_cast<uint8_t>(0x80 | ((code >> 6) & 0x3F));
        bytes[count++] = static_cast<uint8_t>(0x80 | (code & 0x3F));
    } else {
        bytes[count++] = static_cast<uint8_t>(0xF0 | (code >> 18));
        bytes[count++] = static_cast<uint8_t>(0x80 | ((code >> 12) & 0x3F));
        bytes[count++] = static_cast<uint8_t>(0x80 | ((code >> 6) & 0x3F));
        bytes[count++] = static_cast<uint8_t>(0x80 | (code & 0x3F));
    }
    return sink.append(bytes, count);
}

bool appendUtf16le(char32_t code, tnefhost::ByteSink& sink) {
    char16_t units[2];
    size_t count = 0;
    if (code < 0x10000) {
        units[count++] = static_cast<char16_t>(code);
    } else {
        code -= 0x10000;
        units[count++] = static_cast<char16_t>(0xD800 | (code >> 10));
        units[count++] = static_cast<char16_t>(0xDC00 | (code & 0x3FF));
    }
    uint8_t bytes[4];
    for (size_t i = 0; i < count; ++i) {
        bytes[2 * i] = static_cast<uint8_t>(units[i] & 0xFF);
        bytes[2 * i + 1] = static_cast<uint8_t>(units[i] >> 8);
    }
    return sink.append(bytes, 2 * count);
}

// Code points to the bytes of one charset. What the charset lacks becomes
// the replacement, as a character where it has one, else the raw byte.
class Encoder {
public:
    Encoder(const CharsetRoute& route, uint8_t replacement)
        : route_(route), replacement_(replacement) {}

    // False when the target is full; a character is written whole or not at all.
    bool put(const char32_t* codes, size_t count, tnefhost::ByteSink& sink) {
        if (route_.form == CharsetForm::kTable) {
            return tnefhost::appendTableBytes(route_.table, codes, count, replacement_, sink);
        }
        for (size_t i = 0; i < count; ++i) {
            if (!putOne(codes[i], sink)) return false;
        }
        return true;
    }

    // Ends the text: ISO-2022-JP returns to ASCII.
    bool finish(tnefhost::ByteSink& sink) {
        uint8_t bytes[8];
        size_t count = shiftTo(false, bytes);
        if (!sink.append(bytes, count)) return false;
        jisMode_ = false;
        return true;
    }

private:
    bool putOne(char32_t code, tnefhost::ByteSink& sink) {
        switch (route_.form) {
            case CharsetForm::kUtf8: return appendUtf8(code, sink);
            case CharsetForm::kUtf16le: return appendUtf16le(code, sink);
            default: break;
        }
        uint8_t bytes[8];
        bool jis = jisMode_;
        size_t count = encode(code, bytes, &jis);
        if (count == 0) count = encode(replacement_, bytes, &jis);
        if (count == 0) {
            count = shiftTo(false, bytes);
            jis = false;
            bytes[count++] = replacement_;
        }
        if (!sink.append(bytes, count)) return false;
        jisMode_ = jis;
        return true;
    }

    // The bytes of one code point, behind the escape that ISO-2022-JP needs
    // to change between ASCII and JIS X 0208 (`jis` is the mode after them);
    // 0 when the charset lacks the character.
    size_t encode(char32_t code, uint8_t* bytes, bool* jis) {
        if (route_.form == CharsetForm::kBrowser) {
            if (code < 0x80) {
                bytes[0] = static_cast<uint8_t>(code);
                return 1;
            }
            return static_cast<size_t>(tnefEncodeCodePoint(route_.label, code, bytes));
        }
        if (code < 0x80) {
            size_t count = shiftTo(false, bytes);
            *jis = false;
            bytes[count++] = static_cast<uint8_t>(code);
            return count;
        }
        uint8_t euc[4];
        if (tnefEncodeCodePoint(kEucJpLabel, code, euc) != 2 || euc[0] < 0xA1 || euc[1] < 0xA1) {
            return 0;
        }
        size_t count = shiftTo(true, bytes);
        *jis = true;
        bytes[count++] = euc[0] & 0x7F;
        bytes[count++] = euc[1] & 0x7F;
        return count;
    }

    // ESC $ B into JIS X 0208, ESC ( B back to ASCII, when the mode changes.
    size_t shiftTo(bool jis, uint8_t* bytes) const {
        if (jis == jisMode_) return 0;
        bytes[0] = 0x1B;
        bytes[1] = jis ? '$' : '(';
        bytes[2] = 'B';
        return 3;
    }

    const CharsetRoute& route_;
    uint8_t replacement_;
    bool jisMode_ = false;
};

}  // namespace

CharsetRoute charsetRoute(CharsetId id) {
    CharsetRoute route;
    if (const char16_t* table = generatedByteTable(id)) {
        route.form = CharsetForm::kTable;
        route.table = table;
        return route;
    }
    const tnefhost::CharsetCodec* codec = tnefhost::charsetCodec(id);
    if (codec == nullptr) return route;
    if (codec->byteTable != nullptr) {
        route.form = CharsetForm::kTable;
        route.table = codec->byteTable;
    } else if (id == kCharsetUtf8) {
        route.form = CharsetForm::kUtf8;
        route.label = kUtf8Label;
    } else if (codec->unitSize == 2) {
        route.form = CharsetForm::kUtf16le;
        route.label = kUtf16leLabel;
    } else {
        for (const BrowserCharset& charset : kBrowserCharsets) {
            if (charset.id == id) {
                route.form = id == 55 ? CharsetForm::kIso2022Jp : CharsetForm::kBrowser;
                route.label = charset.label;
            }
        }
    }
    return route;
}

}  // namespace tnefweb

namespace tnefweb {

namespace {

// Bytes of one charset to code points, a chunk at a time. What can't be
// decoded becomes the replacement, read as the code point of its number.
class Decoder {
public:
    Decoder(const CharsetRoute& route, char32_t replacement)
        : route_(route), replacement_(replacement) {}

    bool begin() { return route_.form == CharsetForm::kTable || tnefDecodeBegin(route_.label) != 0; }

    // Decodes up to a chunk from `*in` into `out` (room for kChunkCodePoints)
    // and moves `*in` and `*left` past what was read.
    size_t next(const uint8_t** in, size_t* left, char32_t* out) {
        size_t length = std::min(*left, kChunkBytes);
        size_t count = length;
        if (route_.form == CharsetForm::kTable) {
            for (size_t i = 0; i < length; ++i) {
                char16_t code = route_.table[(*in)[i]];
                out[i] = code == tnefhost::kUnassigned ? replacement_ : code;
            }
        } else {
            count = replaceFailures(tnefDecodeNext(*in, static_cast<int>(length), out, 0), out);
        }
        *in += length;
        *left -= length;
        return count;
    }

    // What the decoder still holds at the end: a sequence cut short.
    size_t finish(char32_t* out) {
        if (route_.form == CharsetForm::kTable) return 0;
        return replaceFailures(tnefDecodeNext(nullptr, 0, out, 1), out);
    }

private:
    size_t replaceFailures(int count, char32_t* out) const {
        for (int i = 0; i < count; ++i) {
            if (out[i] == 0xFFFD) out[i] = replacement_;
        }
        return static_cast<size_t>(count);
    }

    const CharsetRoute& route_;
    char32_t replacement_;
};

}  // namespace

}  // namespace tnefweb

namespace tnefhost {

// The browser host keeps no descriptors: its decoders live in the page.
CharsetCodecCache::CharsetCodecCache() {
    decoders_.fill(kNoDescriptor);
    encoders_.fill(kNoDescriptor);
}

CharsetCodecCache::~CharsetCodecCache() = default;

iconv_t CharsetCodecCache::descriptor(Slots&, CharsetId, bool) { return kNoDescriptor; }

CharsetCodecCache& PosixHost::charsetCodecs() {
    if (!charsetCodecs_) charsetCodecs_ = std::make_shared<CharsetCodecCache>();
    return *charsetCodecs_;
}

TranscodeResult transcode(CharsetCodecCache&, CharsetId from, CharsetId to, const uint8_t* source,
                          size_t sourceLength, uint8_t* target, size_t capacity,
                          uint8_t replacement) {
    using tnefweb::CharsetForm;
    TranscodeResult result;
    tnefweb::CharsetRoute fromRoute = tnefweb::charsetRoute(from);
    tnefweb::CharsetRoute toRoute = tnefweb::charsetRoute(to);
    if (fromRoute.form == CharsetForm::kNone || toRoute.form == CharsetForm::kNone) return result;
    tnefweb::Decoder decoder(fromRoute, replacement);
    if (!decoder.begin()) return result;
    tnefweb::Encoder encoder(toRoute, replacement);
    ByteSink sink(target, capacity);
    std::unique_ptr<char32_t[]> chunk(new char32_t[tnefweb::kChunkCodePoints]);
    const uint8_t* in = source;
    size_t left = sourceLength;
    bool complete = true;
    while (complete && left > 0) {
        size_t count = decoder.next(&in, &left, chunk.get());
        complete = encoder.put(chunk.get(), count, sink);
    }
    if (complete) {
        size_t count = decoder.finish(chunk.get());
        complete = encoder.put(chunk.get(), count, sink) && encoder.finish(sink);
    }
    result.complete = complete;
    result.length = sink.length();
    return result;
}

}  // namespace tnefhost
