// Damaged and hostile files, refused allocations and failing I/O: every one
// ends in a refusal or a short read, never a hang, and leaves nothing behind.
#include <gtest/gtest.h>

#include "tests/oleio/storage_fixture.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

// Mini streams enough for two mini FAT sectors, regular streams, two
// directory sectors and, with the DIFAT option, two DIFAT sectors.
std::vector<CfbEntryLayout> sampleEntries() {
    return {{"m1", patternBytes(4000, 1)}, {"m2", patternBytes(4000, 2)},
            {"m3", patternBytes(4000, 3)}, {"r1", patternBytes(5000, 4)},
            {"r2", patternBytes(9000, 5)}};
}

TEST(OleDamage, BrokenChains) {
    // A broken directory or DIFAT refuses the file; any other broken chain
    // refuses the streams that lie on it (every mini stream, for the mini
    // FAT and the mini stream), while "r1" still reads.
    std::vector<CfbDamage> damages;
    for (CfbBreak kind : {CfbBreak::kLoop, CfbBreak::kOutOfFile, CfbBreak::kEndEarly}) {
        for (CfbChain chain : {CfbChain::kDifat, CfbChain::kDirectory, CfbChain::kMiniFat, CfbChain::kMiniStream})
            damages.push_back({chain, kind, "m3"});
        damages.push_back({CfbChain::kStream, kind, "m2"});
        damages.push_back({CfbChain::kStream, kind, "r2"});
    }
    for (const CfbDamage& damage : damages) {
        if (damage.chain == CfbChain::kDirectory && damage.kind == CfbBreak::kEndEarly) continue;
        SCOPED_TRACE(std::to_string(int(damage.chain)) + " " + std::to_string(int(damage.kind)) + " " +
                     damage.stream);
        CfbOptions options(3, 300);
        options.damage = {damage};
        OpenedStorage file(buildCfb(sampleEntries(), options));
        bool wholeFile = damage.chain == CfbChain::kDifat || damage.chain == CfbChain::kDirectory;
        ASSERT_EQ(file.open(), !wholeFile);
        if (wholeFile) continue;
        EXPECT_EQ(file.read(damage.stream), std::nullopt);
        EXPECT_EQ(file.read("r1"), patternBytes(5000, 4));
    }
    // A directory cut after its first sector hides the entries of the second.
    CfbOptions cutOptions;
    cutOptions.damage = {{CfbChain::kDirectory, CfbBreak::kEndEarly}};
    OpenedStorage cut(buildCfb(sampleEntries(), cutOptions));
    ASSERT_TRUE(cut.open());
    EXPECT_EQ(cut.read("r1"), std::nullopt);
}

TEST(OleDamage, SizesThatDisagreeWithTheChain) {
    for (auto [name, size] : std::vector<std::pair<std::string, uint64_t>>{
             {"m1", 3000}, {"m1", 4033}, {"m1", 5000}, {"r1", 5200}, {"r1", 4000}, {"r1", 0xFFFFFFFF}}) {
        SCOPED_TRACE(name + " " + std::to_string(size));
        auto entries = sampleEntries();
        for (auto& plan : entries)
            if (plan.name == name) plan.sizeOverride = size;
        OpenedStorage file(buildCfb(entries));
        ASSERT_TRUE(file.open());
        EXPECT_EQ(file.read(name), std::nullopt);
    }
}

TEST(OleDamage, SiblingLinksThatLoopOrLeaveTheDirectory) {
    const std::vector<CfbEntryLayout> entries = {{"a", bytesOf("1")}, {"b", bytesOf("2")}, {"c", bytesOf("3")}};
    for (uint32_t left : {0u, 2u, 3u, 500u}) {  // the root, the entry itself, a sibling, nothing
        Bytes bytes = buildCfb(entries);
        const size_t directory = (bytes[0x30] + 1) * 512;
        const uint32_t top = bytes[directory + 0x4C];  // "b", the middle of three
        ASSERT_EQ(top, 2u);
        patchLe32(bytes, directory + top * 128 + 0x44, left);
        patchLe32(bytes, directory + 3 * 128 + 0x48, top);  // "c" points back up
        OpenedStorage file(bytes);
        ASSERT_TRUE(file.open());
        EXPECT_EQ(file.read("b"), bytesOf("2")) << left;
        EXPECT_EQ(file.read("c"), bytesOf("3")) << left;
        EXPECT_EQ(file.read("missing"), std::nullopt) << left;
    }
}

TEST(OleDamage, HostileHeadersAreRefused) {
    const Bytes good = buildCfb(sampleEntries(), CfbOptions(3, 300));
    const uint32_t dirStart = good[0x30] | good[0x31] << 8;
    const size_t rootType = (dirStart + 1) * 512 + 0x42;
    struct Case {
        const char* label;
        size_t offset;
        uint32_t value;
        int width;
    };
    const std::vector<Case> cases = {
        {"signature", 7, 0xE0, 1},          {"byte order", 0x1C, 0xFEFF, 2},
        {"version", 0x1A, 5, 2},            {"v3 with 4096-byte sectors", 0x1E, 12, 2},
        {"mini shift", 0x20, 7, 2},         {"cutoff", 0x38, 8192, 4},
        {"no FAT", 0x2C, 0, 4},             {"FAT count", 0x2C, 0xFFFFFFFF, 4},
        {"directory start", 0x30, 0xFFFFFFFE, 4}, {"mini FAT count", 0x40, 0x7FFFFFFF, 4},
        {"mini FAT start", 0x3C, 100000, 4},      {"DIFAT count", 0x48, 1, 4},
        {"DIFAT start", 0x44, 0xFFFFFFFE, 4},     {"FAT sector", 0x4C, 100000, 4},
        {"root type", rootType, 2, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        Bytes bytes = good;
        if (c.width == 1) bytes[c.offset] = uint8_t(c.value);
        else if (c.width == 2) patchLe16(bytes, c.offset, uint16_t(c.value));
        else patchLe32(bytes, c.offset, c.value);
        OpenedStorage file(bytes);
        EXPECT_FALSE(file.open());
    }
    for (size_t length : {size_t(511), size_t(512), size_t(2000)}) {
        OpenedStorage file(Bytes(good.begin(), good.begin() + length));
        EXPECT_FALSE(file.open()) << length;
    }
}

// Runs open, lookups and reads of every stream; true when all of it worked.
bool readEverything(OpenedStorage& file) {
    if (!file.open()) return false;
    bool all = true;
    for (const CfbEntryLayout& plan : sampleEntries()) all = file.read(plan.name, 3000) == plan.data && all;
    return all;
}

TEST(OleDamage, EachRefusedAllocationLeavesNothing) {
    const Bytes bytes = buildCfb(sampleEntries(), CfbOptions(3, 300));
    bool completed = false;
    for (uint64_t n = 1; !completed && n < 100; ++n) {
        SCOPED_TRACE(n);
        OpenedStorage file(bytes);
        file.memory.refuseRequest(n);
        completed = readEverything(file);
    }
    EXPECT_TRUE(completed);
    OpenedStorage file(bytes);
    file.memory.refuseAbove(300 * 4 - 1);  // the list of FAT sectors
    EXPECT_FALSE(file.open());
}

#ifdef TNEF_OLEIO_PATH
// The host's allocator is the only one: the built library imports no heap
// functions and exports nothing but its entry.
TEST(OleLibrary, ExportsOnlyTheEntryAndImportsNoAllocator) {
    LibrarySymbols symbols = librarySymbols(TNEF_OLEIO_PATH);
    EXPECT_EQ(symbols.defined, std::vector<std::string>{"GetOLEInterface"});
    EXPECT_FALSE(symbols.imported.empty());  // nm did run
    EXPECT_EQ(heapFunctions(symbols.imported), std::vector<std::string>{});
}
#endif

TEST(OleDamage, EachFailedIoCallEndsCleanly) {
    const Bytes bytes = buildCfb(sampleEntries(), CfbOptions(3, 300, true));
    uint64_t openCalls = 0, cleanCalls = 0;
    {
        OpenedStorage file(bytes);
        ASSERT_TRUE(file.open());
        openCalls = file.input.calls();
        file.close();
        ASSERT_TRUE(readEverything(file));
        cleanCalls = file.input.calls();
    }
    for (uint64_t n = 1; n <= cleanCalls; ++n) {
        SCOPED_TRACE(n);
        OpenedStorage file(bytes);
        file.input.failCall(n);
        // The first two calls measure the file; when they fail, the
        // IoObject's size serves instead. Any later failure during open
        // refuses the file.
        EXPECT_EQ(file.open(), n <= 2 || n > openCalls);
        // A failed read shortens what a read call returns; the caller may read
        // on, so what comes is always the stream's own bytes, perhaps fewer.
        for (const CfbEntryLayout& plan : file.storage ? sampleEntries() : std::vector<CfbEntryLayout>{}) {
            std::optional<Bytes> got = file.read(plan.name, 3000);
            if (got) {
                EXPECT_EQ(*got, slice(plan.data, 0, got->size()));
            }
        }
    }
    // Missing slots: without tell the IoObject's size serves; without seek or
    // read nothing can be done.
    for (auto [op, opens] : {std::pair{tnefhost::IoOp::kTell, true}, {tnefhost::IoOp::kSeek, false},
                             {tnefhost::IoOp::kRead, false}}) {
        OpenedStorage file(bytes);
        file.input.removeSlot(op);
        EXPECT_EQ(readEverything(file), opens) << int(op);
    }
}

}  // namespace
}  // namespace tneftest
