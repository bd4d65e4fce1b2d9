#include "stream/address_entry.h"

#include <string.h>

#include "reader/sizes.h"
#include "stream/property_block.h"

int32_t tnefMeasureText(const uint8_t* bytes, int32_t length, bool wide) {
    int32_t measured = 0;
    if (wide) {
        while (measured + 1 < length && (bytes[measured] != 0 || bytes[measured + 1] != 0)) {
            measured += 2;
        }
    } else {
        while (measured < length && bytes[measured] != 0) ++measured;
    }
    return measured;
}

TnefEntryText tnefEntryText(const uint8_t* bytes, int32_t length, bool wide, bool widen) {
    TnefEntryText text;
    text.bytes = bytes;
    text.widen = wide && widen ? 1 : 0;
    text.measured = tnefMeasureText(bytes, length, wide && text.widen == 0);
    return text;
}

int32_t tnefEntryTextSize(const TnefEntryText& text) {
    if (text.bytes == nullptr) return 0;
    return text.widen != 0 ? tnefSizeMul(text.measured, 2) : text.measured;
}

void tnefPutDelimiter(uint8_t* out, int32_t* used, uint8_t character, bool wide) {
    out[(*used)++] = character;
    if (wide) out[(*used)++] = 0;
}

namespace {

void putText(uint8_t* out, int32_t* used, const TnefEntryText& text) {
    if (text.widen != 0) {
        for (int32_t i = 0; i < text.measured; ++i) {
            out[(*used)++] = text.bytes[i];
            out[(*used)++] = 0;
        }
        return;
    }
    if (text.measured > 0) memcpy(out + *used, text.bytes, static_cast<size_t>(text.measured));
    *used += text.measured;
}

}  // namespace

void tnefPutEntry(uint8_t* out, int32_t* used, const TnefEntryText& name,
                  const TnefEntryText& address, bool wide) {
    if (name.bytes != nullptr) {
        tnefPutDelimiter(out, used, '"', wide);
        putText(out, used, name);
        tnefPutDelimiter(out, used, '"', wide);
        if (address.bytes != nullptr) tnefPutDelimiter(out, used, ' ', wide);
    }
    if (address.bytes != nullptr) {
        tnefPutDelimiter(out, used, '<', wide);
        putText(out, used, address);
        tnefPutDelimiter(out, used, '>', wide);
    }
    int32_t end = *used;
    tnefPutDelimiter(out, &end, 0, wide);
}
