// The project's compound file writer: builds a storage whose root holds the
// given streams, in version 3 or 4, with mini and regular streams, a DIFAT
// when the FAT outgrows the header, and a directory tree of all-black nodes.
// Knobs break chosen chains or sizes so that tests can feed a reader damaged
// files. Below it, the OLE descriptor streams such a storage holds (CompObj,
// Ole10Native, AttachDesc, the Ole stream of a link), with the offsets of
// their fields for tests that cut them short.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/tnef_writer.h"

namespace tneftest {

struct CfbEntryLayout {
    CfbEntryLayout(std::string name, Bytes data) : name(std::move(name)), data(std::move(data)) {}
    static CfbEntryLayout emptyStorage(std::string name) {
        CfbEntryLayout plan(std::move(name), {});
        plan.storage = true;
        return plan;
    }

    std::string name;  // UTF-8; control bytes such as "\x01" stay as they are
    Bytes data;
    bool storage = false;                   // an empty storage instead of a stream
    std::optional<uint64_t> sizeOverride;   // size to write in the entry instead
};

// The chains a damage can be done to.
enum class CfbChain { kStream, kDirectory, kMiniFat, kMiniStream, kDifat };

enum class CfbBreak {
    kLoop,       // the last sector links back to the first (DIFAT: the first links to itself)
    kOutOfFile,  // the first link (the start, for a one-sector chain) leaves the file
    kEndEarly,   // the first sector ends the chain; needs two sectors
};

struct CfbDamage {
    CfbDamage(CfbChain chain, CfbBreak kind, std::string stream = {})
        : chain(chain), kind(kind), stream(std::move(stream)) {}

    CfbChain chain = CfbChain::kStream;
    CfbBreak kind = CfbBreak::kLoop;
    std::string stream;  // the stream's name, for CfbChain::kStream
};

struct CfbOptions {
    CfbOptions(int version = 3, uint32_t minFatSectors = 0, bool interleave = false)
        : version(version), minFatSectors(minFatSectors), interleave(interleave) {}

    int version = 3;  // 3: 512-byte sectors, 4: 4096-byte sectors
    // At least this many FAT sectors; above 109 the rest are listed by DIFAT
    // sectors, so a small file can need the DIFAT.
    uint32_t minFatSectors = 0;
    // Regular streams take sectors in turn rather than each a run of its own.
    bool interleave = false;
    std::vector<CfbDamage> damage;
};

// Throws std::invalid_argument for a damage that the layout can't take.
Bytes buildCfb(const std::vector<CfbEntryLayout>& entries, const CfbOptions& options = {});

// Overwrites a little-endian number inside built bytes (header fields, say).
void patchLe16(Bytes& bytes, size_t offset, uint16_t value);
void patchLe32(Bytes& bytes, size_t offset, uint32_t value);

// Bytes 0, 1, 2, ... of `length`, wrapping at 251 so that a misplaced sector
// shows.
Bytes patternBytes(size_t length, uint8_t seed = 0);

// --- OLE descriptor streams

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
