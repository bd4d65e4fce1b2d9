// The compound file header: signature, version and sector geometry, and the
// counts and starts of the tables, each checked against the file's length
// before anything relies on it.
#include <string.h>

#include "oleio/cfb_format.h"
#include "oleio/storage.h"
#include "reader/bytes.h"

namespace {

// Sectors that begin inside a file of `fileSize` bytes whose header takes
// the first sector; capped at what a sector number can address.
uint32_t sectorsInFile(int64_t fileSize, uint32_t shift) {
    int64_t sectorSize = static_cast<int64_t>(1) << shift;
    if (fileSize <= sectorSize) return 0;
    int64_t count = (fileSize - sectorSize + sectorSize - 1) >> shift;
    return count > static_cast<int64_t>(kCfbMaxRegularSector) ? kCfbMaxRegularSector + 1
                                                               : static_cast<uint32_t>(count);
}

// DIFAT sectors needed to list `fatSectors` FAT sectors beyond the header's.
uint32_t difatSectorsNeeded(uint32_t fatSectors, uint32_t sectorSize) {
    if (fatSectors <= kCfbHeaderDifatEntries) return 0;
    uint32_t perSector = sectorSize / 4 - 1;  // the last entry links the next sector
    return (fatSectors - kCfbHeaderDifatEntries + perSector - 1) / perSector;
}

int32_t geometryOk(const uint8_t* bytes, uint32_t* version, uint32_t* shift) {
    if (memcmp(bytes, kCfbSignature, sizeof kCfbSignature) != 0) return 0;
    if (tnefLe16(bytes + kCfbHeaderByteOrder) != kCfbByteOrderMark) return 0;
    *version = tnefLe16(bytes + kCfbHeaderMajorVersion);
    *shift = tnefLe16(bytes + kCfbHeaderSectorShift);
    if (!((*version == 3 && *shift == kCfbShiftVersion3) ||
          (*version == 4 && *shift == kCfbShiftVersion4)))
        return 0;
    if (tnefLe16(bytes + kCfbHeaderMiniSectorShift) != kCfbMiniSectorShift) return 0;
    return tnefLe32(bytes + kCfbHeaderMiniCutoff) == kCfbMiniStreamCutoff ? 1 : 0;
}

}  // namespace

int32_t cfbParseHeader(OleStorage* storage, const uint8_t* bytes, CfbHeader* header) {
    uint32_t shift = 0;
    if (geometryOk(bytes, &header->version, &shift) == 0) return 0;
    storage->sectorShift = shift;
    storage->sectorSize = 1u << shift;
    storage->sectorCount = sectorsInFile(storage->fileSize, shift);
    uint32_t count = storage->sectorCount;

    header->fatSectors = tnefLe32(bytes + kCfbHeaderFatSectors);
    header->directoryStart = tnefLe32(bytes + kCfbHeaderDirectoryStart);
    header->miniFatStart = tnefLe32(bytes + kCfbHeaderMiniFatStart);
    header->miniFatSectors = tnefLe32(bytes + kCfbHeaderMiniFatSectors);
    header->difatStart = tnefLe32(bytes + kCfbHeaderDifatStart);
    header->difatSectors = tnefLe32(bytes + kCfbHeaderDifatSectors);

    // Every table sector is a sector of the file, so no count can exceed
    // the sectors there are, and every start must lie inside the file.
    if (header->fatSectors == 0 || header->fatSectors > count) return 0;
    if (header->directoryStart >= count) return 0;
    if (header->miniFatSectors > count) return 0;
    if (header->miniFatSectors != 0 && header->miniFatStart >= count) return 0;
    if (header->difatSectors > count) return 0;
    uint32_t difatNeeded = difatSectorsNeeded(header->fatSectors, storage->sectorSize);
    if (header->difatSectors < difatNeeded) return 0;
    if (difatNeeded != 0 && header->difatStart >= count) return 0;
    return 1;
}
