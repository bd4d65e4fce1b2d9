// The charset services of the host: conversions between the charsets of
// the name table through iconv, lead bytes of the double-byte code pages,
// and the default charset.
#include "host/charsets.h"

#include <climits>

#include "host/charset_transcoder.h"
#include "host/posix_host.h"
#include "reader/charset_names.h"

namespace tnefhost {

namespace {

// One conversion for a service: the length written or needed goes into the
// target; nonzero only when the whole text was converted.
int32_t convert(HostContext* host, CharsetId from, CharsetId to, const HostText* source,
                HostTextBuffer* target, uint8_t replacement) {
    if (host == nullptr || target == nullptr) return 0;
    if (!usableSource(source) || !usableTarget(target)) {
        target->length = 0;
        return 0;
    }
    TranscodeResult result =
        transcode(PosixHost::fromContext(host)->charsetCodecs(), effectiveCharset(host, from),
                  effectiveCharset(host, to), static_cast<const uint8_t*>(source->bytes),
                  static_cast<size_t>(source->length), static_cast<uint8_t*>(target->bytes),
                  static_cast<size_t>(target->length), replacement);
    if (result.length > static_cast<size_t>(INT32_MAX)) {
        target->length = 0;
        return 0;
    }
    target->length = static_cast<int32_t>(result.length);
    return result.complete ? 1 : 0;
}

}  // namespace

bool usableSource(const HostText* source) {
    return source != nullptr && source->length >= 0 &&
           (source->bytes != nullptr || source->length == 0);
}

bool usableTarget(const HostTextBuffer* target) {
    return target != nullptr &&
           (target->bytes == nullptr ? target->length == 0 : target->length >= 0);
}

CharsetId charsetByName(std::string_view name) {
    return tnefCharsetByName(std::string(name).c_str());
}

std::string charsetName(CharsetId id) { return tnefCharsetName(id); }

CharsetId effectiveCharset(HostContext* host, CharsetId id) {
    return id != kCharsetNone ? id : PosixHost::fromContext(host)->options().defaultCharset;
}

bool isLeadByte(CharsetId id, uint8_t byte) {
    switch (id) {
        case kCharsetShiftJis:  // code page 932
            return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
        case kCharsetGb2312:  // code page 936
        case kCharsetBig5:    // code page 950
        case kCharsetEucKr:   // code page 949
            return byte >= 0x81 && byte <= 0xFE;
        default:
            return false;
    }
}

void hostInstallCharsetServices(HostContext* context) {
    context->hostTransformText = escapeHtmlText;
    context->hostCharsetToUnicode = [](HostContext* host, const HostText* source,
                                       HostTextBuffer* target, uint8_t replacement,
                                       int32_t) -> int32_t {
        return host == nullptr ? 0
                               : convert(host, host->currentCharset, kCharsetUnicode, source,
                                         target, replacement);
    };
    context->hostUnicodeToCharset = [](HostContext* host, const HostText* source,
                                       HostTextBuffer* target, uint8_t replacement,
                                       int32_t) -> int32_t {
        return host == nullptr ? 0
                               : convert(host, kCharsetUnicode, host->currentCharset, source,
                                         target, replacement);
    };
    context->hostCharsetToCharset = [](HostContext* host, CharsetId sourceCharset,
                                       const HostText* source, HostTextBuffer* target,
                                       uint8_t replacement) -> int32_t {
        return host == nullptr ? 0
                               : convert(host, sourceCharset, host->currentCharset, source, target,
                                         replacement);
    };
    context->hostIsLeadByte = [](HostContext* host, uint8_t byte, CharsetId charset) -> int32_t {
        return host != nullptr && isLeadByte(effectiveCharset(host, charset), byte) ? 1 : 0;
    };
}

}  // namespace tnefhost
