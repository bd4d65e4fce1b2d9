// Conversion of text from one CharsetId to another, through code points:
// the source is decoded, the code points are encoded in the target charset.
// What can't be decoded or encoded becomes the replacement, and the rest of
// the text goes on.
#pragma once

#include <iconv.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "reader/charset_names.h"
#include "reader/host.h"

namespace tnefhost {

// The iconv descriptors one host context keeps open, per charset and
// direction; closed with the cache. One context is used by one thread at a
// time, and so is its cache.
class CharsetCodecCache {
public:
    CharsetCodecCache();
    ~CharsetCodecCache();
    CharsetCodecCache(const CharsetCodecCache&) = delete;
    CharsetCodecCache& operator=(const CharsetCodecCache&) = delete;

    // From the charset's bytes to code points, and back; kNoDescriptor when
    // the charset has no iconv codec or iconv can't open it.
    iconv_t decoder(CharsetId id) { return descriptor(decoders_, id, true); }
    iconv_t encoder(CharsetId id) { return descriptor(encoders_, id, false); }

    static inline const iconv_t kNoDescriptor = reinterpret_cast<iconv_t>(-1);

private:
    using Slots = std::array<iconv_t, kCharsetNameCount + 1>;
    iconv_t descriptor(Slots& slots, CharsetId id, bool decoding);

    Slots decoders_;
    Slots encoders_;
};

struct TranscodeResult {
    // The whole text was converted; false when a charset has no codec or the
    // target was too small.
    bool complete = false;
    // Bytes written to the target, or needed when measuring.
    size_t length = 0;
};

// Converts `source` from charset `from` to charset `to`. With a null
// `target` it only measures. The replacement byte, read as the code point of
// the same number, stands in for every undecodable sequence and every
// character the target lacks; where the target can't even encode that, the
// raw byte is written. A target too small keeps the whole characters that
// fit.
TranscodeResult transcode(CharsetCodecCache& cache, CharsetId from, CharsetId to,
                          const uint8_t* source, size_t sourceLength, uint8_t* target,
                          size_t capacity, uint8_t replacement);

}  // namespace tnefhost
