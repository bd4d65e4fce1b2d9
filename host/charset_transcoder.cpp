#include "host/charset_transcoder.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>

#include "host/byte_sink.h"
#include "host/charset_codecs.h"
#include "host/posix_host.h"

namespace tnefhost {

namespace {

// Code points travel between the two halves as native 32-bit numbers.
constexpr const char* kCodePoints =
    std::endian::native == std::endian::little ? "UTF-32LE" : "UTF-32BE";
constexpr size_t kChunkCodePoints = 1024;
constexpr size_t kCodePointSize = sizeof(char32_t);
const size_t kIconvFailed = static_cast<size_t>(-1);

// Bytes of one charset to code points.
class Decoder {
public:
    Decoder(const CharsetCodec& codec, iconv_t descriptor, char32_t replacement)
        : codec_(codec), descriptor_(descriptor), replacement_(replacement) {
        if (descriptor_ != CharsetCodecCache::kNoDescriptor) {
            iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
        }
    }

    // Decodes from `*in` into `out`, at most `room` code points; returns
    // how many were written and moves `*in` and `*left` past what was read.
    size_t next(const uint8_t** in, size_t* left, char32_t* out, size_t room) {
        if (codec_.byteTable != nullptr) return nextFromTable(in, left, out, room);
        char* from = reinterpret_cast<char*>(const_cast<uint8_t*>(*in));
        char* to = reinterpret_cast<char*>(out);
        size_t toLeft = room * kCodePointSize;
        while (*left > 0 && toLeft >= kCodePointSize) {
            if (iconv(descriptor_, &from, left, &to, &toLeft) != kIconvFailed) break;
            if (errno == E2BIG) break;
            // An invalid sequence, or one cut off by the end of the text:
            // one replacement, and decoding goes on one code unit later.
            if (toLeft < kCodePointSize) break;
            std::memcpy(to, &replacement_, kCodePointSize);
            to += kCodePointSize;
            toLeft -= kCodePointSize;
            size_t skip = std::min(codec_.unitSize, *left);
            from += skip;
            *left -= skip;
        }
        *in = reinterpret_cast<const uint8_t*>(from);
        return room - toLeft / kCodePointSize;
    }

    // Code points the codec still holds back at the end of the text (a
    // base letter waiting for a combining mark, say).
    size_t finish(char32_t* out, size_t room) {
        if (codec_.byteTable != nullptr) return 0;
        char* to = reinterpret_cast<char*>(out);
        size_t toLeft = room * kCodePointSize;
        iconv(descriptor_, nullptr, nullptr, &to, &toLeft);
        return room - toLeft / kCodePointSize;
    }

private:
    size_t nextFromTable(const uint8_t** in, size_t* left, char32_t* out, size_t room) {
        size_t count = std::min(room, *left);
        for (size_t i = 0; i < count; ++i) {
            char16_t code = codec_.byteTable[(*in)[i]];
            out[i] = code == kUnassigned ? replacement_ : code;
        }
        *in += count;
        *left -= count;
        return count;
    }

    const CharsetCodec& codec_;
    iconv_t descriptor_;
    char32_t replacement_;
};

// Code points to the bytes of one charset.
class Encoder {
public:
    Encoder(const CharsetCodec& codec, iconv_t descriptor, uint8_t replacement)
        : codec_(codec), descriptor_(descriptor), replacement_(replacement) {
        if (descriptor_ != CharsetCodecCache::kNoDescriptor) {
            iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
        }
    }

    // False when the target is full.
    bool put(const char32_t* codePoints, size_t count, ByteSink& sink) {
        if (codec_.byteTable != nullptr) {
            return appendTableBytes(codec_.byteTable, codePoints, count, replacement_, sink);
        }
        char* from = reinterpret_cast<char*>(const_cast<char32_t*>(codePoints));
        size_t fromLeft = count * kCodePointSize;
        while (fromLeft > 0) {
            size_t before = sink.length();
            size_t result = convertInto(sink, &from, &fromLeft);
            if (result != kIconvFailed) break;
            if (errno == E2BIG) {
                // Measuring, the scratch area empties itself; a target is full.
                if (!sink.measuring() || sink.length() == before) return false;
                continue;
            }
            // A character this charset doesn't have.
            if (!putReplacement(sink)) return false;
            from += kCodePointSize;
            fromLeft -= kCodePointSize;
        }
        return true;
    }

    // Ends the text: a stateful charset returns to its initial shift state.
    bool finish(ByteSink& sink) {
        if (codec_.byteTable != nullptr) return true;
        for (;;) {
            size_t before = sink.length();
            if (convertInto(sink, nullptr, nullptr) != kIconvFailed) return true;
            if (errno != E2BIG || !sink.measuring() || sink.length() == before) return false;
        }
    }

private:
    size_t convertInto(ByteSink& sink, char** from, size_t* fromLeft) {
        size_t room = 0;
        char* to = sink.window(&room);
        size_t toLeft = room;
        size_t result = iconv(descriptor_, from, fromLeft, &to, &toLeft);
        int saved = errno;
        sink.advance(room - toLeft);
        errno = saved;
        return result;
    }

    // The replacement as a character of the charset, so that a stateful
    // charset shifts back as needed; the raw byte where it has no such
    // character.
    bool putReplacement(ByteSink& sink) {
        char32_t code = replacement_;
        char* from = reinterpret_cast<char*>(&code);
        size_t fromLeft = kCodePointSize;
        for (;;) {
            size_t before = sink.length();
            if (convertInto(sink, &from, &fromLeft) != kIconvFailed) return true;
            if (errno == E2BIG) {
                if (!sink.measuring() || sink.length() == before) return false;
                continue;
            }
            return sink.append(&replacement_, 1);
        }
    }

    const CharsetCodec& codec_;
    iconv_t descriptor_;
    uint8_t replacement_;
};

bool usable(const CharsetCodec* codec, iconv_t descriptor) {
    return codec != nullptr &&
           (codec->byteTable != nullptr || descriptor != CharsetCodecCache::kNoDescriptor);
}

}  // namespace

CharsetCodecCache::CharsetCodecCache() {
    decoders_.fill(nullptr);
    encoders_.fill(nullptr);
}

CharsetCodecCache::~CharsetCodecCache() {
    for (Slots* slots : {&decoders_, &encoders_}) {
        for (iconv_t descriptor : *slots) {
            if (descriptor != nullptr && descriptor != kNoDescriptor) iconv_close(descriptor);
        }
    }
}

iconv_t CharsetCodecCache::descriptor(Slots& slots, CharsetId id, bool decoding) {
    const CharsetCodec* codec = charsetCodec(id);
    if (codec == nullptr || codec->iconvName == nullptr) return kNoDescriptor;
    iconv_t& slot = slots[static_cast<size_t>(id)];
    if (slot == nullptr || slot == kNoDescriptor) {
        slot = decoding ? iconv_open(kCodePoints, codec->iconvName)
                        : iconv_open(codec->iconvName, kCodePoints);
    }
    return slot;
}

TranscodeResult transcode(CharsetCodecCache& cache, CharsetId from, CharsetId to,
                          const uint8_t* source, size_t sourceLength, uint8_t* target,
                          size_t capacity, uint8_t replacement) {
    TranscodeResult result;
    const CharsetCodec* fromCodec = charsetCodec(from);
    const CharsetCodec* toCodec = charsetCodec(to);
    iconv_t decoding = cache.decoder(from);
    iconv_t encoding = cache.encoder(to);
    if (!usable(fromCodec, decoding) || !usable(toCodec, encoding)) return result;

    Decoder decoder(*fromCodec, decoding, replacement);
    Encoder encoder(*toCodec, encoding, replacement);
    ByteSink sink(target, capacity);
    char32_t chunk[kChunkCodePoints];
    const uint8_t* in = source;
    size_t left = sourceLength;
    bool complete = true;
    while (complete && left > 0) {
        size_t leftBefore = left;
        size_t count = decoder.next(&in, &left, chunk, kChunkCodePoints);
        if (count == 0 && left == leftBefore) {
            complete = false;  // a codec that neither reads nor writes
            break;
        }
        complete = encoder.put(chunk, count, sink);
    }
    if (complete) {
        size_t count = decoder.finish(chunk, kChunkCodePoints);
        complete = encoder.put(chunk, count, sink) && encoder.finish(sink);
    }
    result.complete = complete;
    result.length = sink.length();
    return result;
}

CharsetCodecCache& PosixHost::charsetCodecs() {
    if (!charsetCodecs_) charsetCodecs_ = std::make_shared<CharsetCodecCache>();
    return *charsetCodecs_;
}

}  // namespace tnefhost
