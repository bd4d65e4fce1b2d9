// Constants of the compound file layout: the header, the special sector
// numbers of the allocation tables and the 128-byte directory entry.
#pragma once

#include <stdint.h>

// Sector numbers with a meaning of their own. Every number up to
// kCfbMaxRegularSector names a sector of the file.
enum : uint32_t {
    kCfbMaxRegularSector = 0xFFFFFFFAu,
    kCfbDifatSector = 0xFFFFFFFCu,
    kCfbFatSector = 0xFFFFFFFDu,
    kCfbEndOfChain = 0xFFFFFFFEu,
    kCfbFreeSector = 0xFFFFFFFFu,
};

// Directory entry number that links nothing.
enum : uint32_t { kCfbNoEntry = 0xFFFFFFFFu };

// The header: always 512 bytes, followed in version 4 by zeros up to the end
// of its 4096-byte sector.
enum : uint32_t {
    kCfbHeaderSize = 512,
    kCfbHeaderMinorVersion = 0x18,
    kCfbHeaderMajorVersion = 0x1A,
    kCfbHeaderByteOrder = 0x1C,
    kCfbHeaderSectorShift = 0x1E,
    kCfbHeaderMiniSectorShift = 0x20,
    kCfbHeaderDirectorySectors = 0x28,
    kCfbHeaderFatSectors = 0x2C,
    kCfbHeaderDirectoryStart = 0x30,
    kCfbHeaderMiniCutoff = 0x38,
    kCfbHeaderMiniFatStart = 0x3C,
    kCfbHeaderMiniFatSectors = 0x40,
    kCfbHeaderDifatStart = 0x44,
    kCfbHeaderDifatSectors = 0x48,
    kCfbHeaderDifat = 0x4C,
    kCfbHeaderDifatEntries = 109,
};

constexpr uint8_t kCfbSignature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr uint32_t kCfbByteOrderMark = 0xFFFE;
constexpr uint32_t kCfbShiftVersion3 = 9;   // 512-byte sectors
constexpr uint32_t kCfbShiftVersion4 = 12;  // 4096-byte sectors
constexpr uint32_t kCfbMiniSectorShift = 6;  // 64-byte mini sectors
constexpr uint32_t kCfbMiniSectorSize = 1u << kCfbMiniSectorShift;
// Streams shorter than this live in the mini stream.
constexpr uint32_t kCfbMiniStreamCutoff = 4096;

// The directory entry.
enum : uint32_t {
    kCfbEntrySize = 128,
    kCfbEntryName = 0x00,
    kCfbEntryNameBytes = 64,  // room for 31 UTF-16 units and the terminator
    kCfbEntryNameLength = 0x40,  // bytes of the name, terminator included
    kCfbEntryType = 0x42,
    kCfbEntryLeft = 0x44,
    kCfbEntryRight = 0x48,
    kCfbEntryChild = 0x4C,
    kCfbEntryStart = 0x74,
    kCfbEntrySize64 = 0x78,
};

enum : uint8_t {
    kCfbTypeUnused = 0,
    kCfbTypeStorage = 1,
    kCfbTypeStream = 2,
    kCfbTypeRoot = 5,
};
