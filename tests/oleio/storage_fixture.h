// A storage opened through the library's table over an in-memory file, with
// the host's counting allocator, and a helper that reads a stream whole. At
// its end, whatever happened, nothing of its memory may be left allocated.
#pragma once

#include <algorithm>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "host/io_objects.h"
#include "host/memory.h"
#include "oleio/ole_interface.h"
#include "tests/support/cfb_writer.h"

namespace tneftest {

struct OpenedStorage {
    explicit OpenedStorage(Bytes bytes) : input(std::move(bytes)) { GetOLEInterface(&ole); }
    ~OpenedStorage() { EXPECT_EQ(close(), "") << "memory left allocated"; }

    bool open() {
        storage = ole.openStorage(input.io(), memory.allocator());
        return storage != nullptr;
    }
    // Closes the storage; the leak report of its memory, "" when clean.
    std::string close() {
        if (storage != nullptr) ole.closeStorage(storage);
        storage = nullptr;
        memory.clearFaults();
        return memory.leakReport();
    }
    // The stream's bytes, read in chunks of `chunk`; nothing when it can't be
    // found or opened.
    std::optional<Bytes> read(const std::string& name, uint32_t chunk = 4096) {
        if (ole.findStream(storage, name.c_str()) == 0) return std::nullopt;
        IoObject* io = ole.openStream(storage);
        std::optional<Bytes> out;
        if (io != nullptr && io->open(io) != 0) {
            out.emplace();
            Bytes buffer(chunk);
            for (int32_t got; (got = io->read(io, buffer.data(), chunk)) > 0;)
                out->insert(out->end(), buffer.begin(), buffer.begin() + got);
            io->close(io);
        }
        if (io != nullptr) ole.closeStream(storage);
        ole.resetStream(storage, 0);
        return out;
    }

    tnefhost::HostMemory memory;
    tnefhost::MemoryIo input;
    OleInterface ole{};
    void* storage = nullptr;
};

// Up to `count` bytes of `data` from `from` on.
inline Bytes slice(const Bytes& data, size_t from, size_t count) {
    return Bytes(data.begin() + from, data.begin() + std::min(data.size(), from + count));
}

}  // namespace tneftest
