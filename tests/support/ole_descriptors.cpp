#include "tests/support/ole_descriptors.h"

#include <algorithm>

namespace tneftest {

namespace {

void putText(Bytes& out, const std::string& text, bool terminated = true) {
    out.insert(out.end(), text.begin(), text.end());
    if (terminated) out.push_back(0);
}

int32_t here(const Bytes& out) { return static_cast<int32_t>(out.size()); }

}  // namespace

Bytes compObjStream(const std::string& userType, bool terminated) {
    Bytes out;
    putLe32(out, 0xFFFE0001);     // byte order and version
    putLe32(out, 0x00000A03);     // system version
    putLe32(out, 0xFFFFFFFF);     // reserved
    out.resize(out.size() + 16);  // class id
    putLe32(out, static_cast<uint32_t>(userType.size() + 1));
    putText(out, userType, terminated);
    if (terminated) putLe32(out, 0);  // no clipboard format
    return out;
}

Bytes ole10NativeBitmap(uint32_t size) {
    Bytes out;
    putLe32(out, size);
    out.push_back('B');
    out.push_back('M');
    for (uint32_t i = 2; i < size; ++i) out.push_back(static_cast<uint8_t>(i * 7));
    return out;
}

OlePackageBytes ole10NativePackage(const OlePackage& package) {
    OlePackageBytes result{};
    Bytes& out = result.bytes;
    putLe32(out, 0);     // total size, patched below
    putLe16(out, 0x02);  // package flags
    putText(out, package.label);
    result.labelEnd = here(out) - 1;
    putText(out, package.sourcePath);
    result.pathEnd = here(out) - 1;
    putLe32(out, 0x00030000);  // the eight bytes in front of the temporary path
    putLe32(out, static_cast<uint32_t>(package.tempPath.size() + 1));
    putText(out, package.tempPath);
    result.tempPathEnd = here(out) - 1;
    putLe32(out, static_cast<uint32_t>(package.payload.size()));
    result.payloadStart = here(out);
    out.insert(out.end(), package.payload.begin(), package.payload.end());
    uint32_t total = static_cast<uint32_t>(out.size() - 4);
    for (int i = 0; i < 4; ++i) out[i] = static_cast<uint8_t>(total >> (8 * i));
    return result;
}

Bytes attachDescStream(const std::string& name) {
    Bytes out;
    putLe32(out, 0x00000100);
    out.push_back(0x0D);
    putText(out, name, false);
    out.push_back(0x0D);
    putLe32(out, 0);
    return out;
}

OleLinkBytes oleLinkStream(const OleLink& link) {
    OleLinkBytes result{};
    Bytes& out = result.bytes;
    putLe32(out, 0x02000001);  // version
    putLe32(out, 0x00000001);  // flags: a link
    putLe32(out, 0);
    putLe32(out, 0x00000303);  // the moniker's class id begins
    out.resize(out.size() + 12);
    putLe32(out, static_cast<uint32_t>(link.path.size() + 1));
    putText(out, link.path);
    putLe16(out, 0xFFFF);
    out.push_back(0xAD);
    out.push_back(0xDE);
    result.markerEnd = here(out) - 1;
    out.insert(out.end(), link.trailer.begin(), link.trailer.end());
    return result;
}

Bytes oleObjectValue(const Bytes& storage, uint8_t idByte) {
    Bytes value(16 + storage.size(), idByte);
    std::copy(storage.begin(), storage.end(), value.begin() + 16);
    return value;
}

}  // namespace tneftest
