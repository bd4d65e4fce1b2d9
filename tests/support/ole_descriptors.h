// Builds the bytes of OLE descriptor streams (CompObj, Ole10Native,
// AttachDesc, the Ole stream of a link) from a readable description, with
// the offsets of their fields for tests that cut them short.
#pragma once

#include <cstdint>
#include <string>

#include "tests/support/tnef_writer.h"

namespace tneftest {

// CompObj: a 28-byte header, the name's length, the user type name and its
// NUL and a clipboard format; unterminated, the stream ends with the name.
Bytes compObjStream(const std::string& userType, bool terminated = true);

// Ole10Native in bitmap form: a 4-byte size, then a bitmap of `size` bytes
// beginning with "BM".
Bytes ole10NativeBitmap(uint32_t size);

// Ole10Native in package form.
struct OlePackage {
    std::string label = "report.txt";
    std::string sourcePath = "C:\\docs\\report.txt";
    std::string tempPath = "C:\\tmp\\report.txt";
    Bytes payload = bytesOf("payload bytes");
};

struct OlePackageBytes {
    Bytes bytes;
    int32_t labelEnd;      // offset of the label's NUL
    int32_t pathEnd;       // offset of the source path's NUL
    int32_t tempPathEnd;   // offset of the temporary path's NUL
    int32_t payloadStart;  // offset of the payload
};

OlePackageBytes ole10NativePackage(const OlePackage& package);

// AttachDesc: 4 bytes, 0x0D, the name, 0x0D, and a few bytes more.
Bytes attachDescStream(const std::string& name);

// Ole stream of a linked object: a header, the file moniker's 4-byte path
// length, the path, NUL, 0xFF 0xFF, the 0xAD 0xDE marker, then `trailer`.
struct OleLink {
    std::string path = "C:\\shared\\plan.xls";
    Bytes trailer = Bytes(16, 0);
};

struct OleLinkBytes {
    Bytes bytes;
    int32_t markerEnd;  // offset of the marker's 0xDE
};

OleLinkBytes oleLinkStream(const OleLink& link);

// The value of an attachment's object property: a 16-byte interface
// identifier of `idByte`s, then the storage.
Bytes oleObjectValue(const Bytes& storage, uint8_t idByte = 0x11);

}  // namespace tneftest
