// The compound file reader on arbitrary bytes: open the storage, look for
// every stream name the module asks for, read each stream found in chunks
// and with seeks, close. Memory left allocated is a finding.
#include <cstdint>
#include <vector>

#include "fuzz/fuzz_finding.h"
#include "host/io_objects.h"
#include "host/memory.h"
#include "oleio/ole_interface.h"

namespace {

constexpr const char* kNames[] = {"\x01" "CompObj", "\x01" "Ole10Native", "\x01" "Ole", "AttachDesc",
                                  "\x06" "Primary", "Contents", "CONTENTS", "Package", "Workbook",
                                  "WordDocument", "MailStream"};

void readStream(IoObject* io, uint32_t chunk) {
    if (io->open(io) == 0) return;
    std::vector<uint8_t> buffer(chunk);
    int64_t total = 0;
    for (int32_t got; (got = io->read(io, buffer.data(), chunk)) > 0;) {
        tnefuzz::failIf(static_cast<uint32_t>(got) > chunk, "read more than asked");
        total += got;
        tnefuzz::failIf(total > io->size, "read past the stream's size");
    }
    io->seek(io, io->size / 2, 0);
    io->read(io, buffer.data(), chunk);
    io->seek(io, -1, 2);
    io->tell(io);
    io->read(io, buffer.data(), chunk);
    io->close(io);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tnefhost::HostMemory memory;
    memory.refuseAbove(tnefuzz::kLargestAllocation);
    tnefhost::MemoryIo input(std::vector<uint8_t>(data, data + size));
    OleInterface ole{};
    GetOLEInterface(&ole);
    input.io()->open(input.io());
    void* storage = ole.openStorage(input.io(), memory.allocator());
    if (storage != nullptr) {
        // Chunk sizes inside a sector, across sectors and across the mini
        // stream's 64-byte units.
        uint32_t chunk = size > 0 ? 1 + data[size - 1] * 37u : 4096;
        for (const char* name : kNames) {
            if (ole.findStream(storage, name) == 0) continue;
            IoObject* io = ole.openStream(storage);
            if (io != nullptr) {
                readStream(io, chunk);
                ole.closeStream(storage);
            }
            ole.resetStream(storage, 0);
        }
        ole.closeStorage(storage);
    }
    tnefuzz::failIf(memory.liveBlocks() != 0, "storage reader leaked:\n" + memory.leakReport());
    return 0;
}
