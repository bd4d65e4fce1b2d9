#include "ole/descriptor_parsers.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "host/posix_host.h"
#include "tests/support/cfb_writer.h"

using namespace tneftest;

namespace {

using Lines = std::vector<std::string>;

const std::string kCompObj = "oleProcessCompObjStream(): ";
const std::string kNative = "oleProcessOle10NativeStream(): Not enough data in buffer (while ";
const std::string kOle = "oleProcessOleStream(): ";
const std::string kNoMemory =
    "oleProcessString(): Failed to allocate output string from input string...";

class DescriptorParsers : public ::testing::Test {
protected:
    ~DescriptorParsers() override {
        reset();
        EXPECT_EQ(results.leakReport(), "");
    }
    // The parsers run on the first `count` bytes, copied into a block of
    // exactly that size: ASan reports any read at or past `count`.
    const uint8_t* cut(const Bytes& bytes, size_t count) {
        block.reset(new uint8_t[count]);
        std::memcpy(block.get(), bytes.data(), count);
        return block.get();
    }
    int32_t compObj(const Bytes& b, size_t n) {
        return oleProcessCompObjStream(host.context(), cut(b, n), n, &start);
    }
    int32_t native(const Bytes& b, size_t n) {
        return oleProcessOle10NativeStream(host.context(), allocator, cut(b, n), n, &start, &size,
                                           &name);
    }
    int32_t attachDesc(const Bytes& b, size_t n) {
        return oleProcessAttachDescStream(host.context(), allocator, cut(b, n), n, &name);
    }
    int32_t link(const Bytes& b, size_t n, int32_t hits = 1, bool second = true) {
        return oleProcessOleStream(host.context(), allocator, cut(b, n), n, hits, &name,
                                   second ? &path : nullptr);
    }
    char* old(const char* text) {
        char* copy = static_cast<char*>(results.allocate(std::strlen(text) + 1));
        return std::strcpy(copy, text);
    }
    std::string text(const char* stored) const { return stored ? stored : "(null)"; }
    Lines log() const { return host.logLines(); }
    void reset() {
        results.release(name);
        results.release(path);
        name = path = nullptr;
        host.clearLog();
        results.clearFaults();
    }

    tnefhost::PosixHost host;
    tnefhost::HostMemory results;
    HostAllocator* allocator = results.allocator();
    std::unique_ptr<uint8_t[]> block;
    char* name = nullptr;
    char* path = nullptr;
    int32_t start = 99, size = 99;
};

// Acrobat (0) and PBrush (4) are read through a storage in ole_extraction_test.
TEST_F(DescriptorParsers, CompObjUserTypes) {
    Bytes noName(32, 0xEE);
    noName.push_back(0);
    EXPECT_EQ(compObj(noName, 33), 6);
    EXPECT_EQ(log(), Lines{kCompObj + "No name in buffer."});
    const std::pair<std::string, int32_t> cases[] = {
        {"Lotus Freelance 9 Presentation", 0},
        {"Lotus Notes", -1},
        {"Microsoft Graph 2000", 0},
        {"Microsoft ", -1},
        {"Wave Sound", 4},
        {"PBRUSH", -1},
    };
    for (const auto& [userType, expected] : cases) {
        Bytes bytes = compObjStream(userType);
        EXPECT_EQ(compObj(bytes, bytes.size()), 0);
        EXPECT_EQ(start, expected) << userType;
    }
}

TEST_F(DescriptorParsers, CompObjEveryTruncation) {
    const Bytes bytes = compObjStream("Wave Sound");  // the NUL stands at 42
    for (size_t count = 0; count <= bytes.size(); ++count) {
        std::string expected = count <= 32   ? "skipping 1st 32 bytes"
                               : count <= 42 ? "getting 1st string"
                                             : "";
        EXPECT_EQ(compObj(bytes, count), expected.empty() ? 0 : 6) << count;
        EXPECT_EQ(start, expected.empty() ? 4 : -1) << count;
        EXPECT_EQ(log(), expected.empty() ? Lines{}
                                          : Lines{kCompObj + "Not enough data in buffer (while " +
                                                  expected + ")."});
        host.clearLog();
    }
}

// A bitmap runs to the end of what was read and leaves the name alone.
TEST_F(DescriptorParsers, Ole10NativeBitmapRunsToTheEndOfTheRead) {
    char* earlier = name = old("earlier");
    EXPECT_EQ(native(ole10NativeBitmap(2), 6), 0);
    EXPECT_EQ(start, 4);
    EXPECT_EQ(size, 2);
    EXPECT_EQ(native(ole10NativeBitmap(100000 - 4), 4086), 0);
    EXPECT_EQ(size, 4082);
    EXPECT_EQ(name, earlier);
}

TEST_F(DescriptorParsers, Ole10NativeEveryTruncation) {
    // The label names the payload, made safe for a file system.
    const OlePackageBytes p = ole10NativePackage({.label = "a:b?c&d\xE9/e.txt"});
    for (int32_t count = 0; count <= static_cast<int32_t>(p.bytes.size()); ++count) {
        size = -7;
        int32_t status = native(p.bytes, count);
        // The last failure is a payload that would start right at the end.
        std::string expected = count <= 6                   ? "skipping 1st 6 bytes"
                               : count <= p.labelEnd        ? "skipping 1st string"
                               : count <= p.pathEnd         ? "skipping 2nd string"
                               : count <= p.pathEnd + 9     ? "skipping 8 bytes after 2nd string"
                               : count <= p.tempPathEnd + 4 ? "skipping 3rd string"
                               : count == p.payloadStart    ? "skipping 4 bytes after 3rd string"
                                                            : "";
        EXPECT_EQ(status, expected.empty() ? 0 : 6) << count;
        EXPECT_EQ(start, expected.empty() ? p.payloadStart : 0) << count;
        EXPECT_EQ(size, count >= p.payloadStart ? 13 : -7) << count;
        EXPECT_EQ(text(name), count > p.labelEnd ? "a;b#c$d_\\e.txt" : "(null)");
        EXPECT_EQ(log(), expected.empty() ? Lines{} : Lines{kNative + expected + ")."}) << count;
        reset();
    }
}

TEST_F(DescriptorParsers, AttachDescDropsPathCharacters) {
    const std::pair<Bytes, const char*> cases[] = {
        {attachDescStream("C:\\Users\\me\\caf\xE9.doc"), "CUsersmecaf\xE9.doc"},
        {attachDescStream("a\x01\"*/:<>?\\|\037b"), "ab"},
        {attachDescStream(""), "earlier"},                // empty name: nothing stored or freed
        {Bytes{0, 0, 0, 0, 0x0A, 'n', 0x0D}, "earlier"},  // no 0x0D at offset 4
    };
    for (const auto& [bytes, stored] : cases) {
        name = old("earlier");
        EXPECT_EQ(attachDesc(bytes, bytes.size()), 0);
        EXPECT_STREQ(name, stored);
        reset();
    }
    const Bytes bytes = attachDescStream("x.doc");  // the second 0x0D stands at 10
    for (size_t count = 0; count < bytes.size(); ++count) {
        EXPECT_EQ(attachDesc(bytes, count), 0);
        EXPECT_EQ(text(name), count > 10 ? "x.doc" : "(null)") << count;
        reset();
    }
    name = old("earlier");
    results.refuseRequest(1);
    EXPECT_EQ(attachDesc(bytes, bytes.size()), 2);
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(log(), Lines{});
}

TEST_F(DescriptorParsers, OleLinkStoresThePathTwice) {
    OleLinkBytes stream = oleLinkStream({.trailer = {'|', 'y', 0, 0xFF, 0xFF, 0xAD, 0xDE}});
    for (int32_t hits : {1, 2}) {
        EXPECT_EQ(link(stream.bytes, stream.bytes.size(), hits), 0);
        EXPECT_STREQ(name, hits == 1 ? "C:\\shared\\plan.xls" : "y");
        EXPECT_STREQ(path, name);
        EXPECT_NE(path, name);
    }
    // 0x1F, ':', '/' and '\' belong to the path; 0x80 and '|' end it.
    const std::pair<uint8_t, std::string> cases[] = {{'|', "\x1F:/\\p"}, {0x80, "q"}};
    for (const auto& [stop, expected] : cases) {
        Bytes bytes = {1, stop};
        bytes.insert(bytes.end(), expected.begin(), expected.end());
        bytes.insert(bytes.end(), {0, 0xFF, 0xFF, 0xAD, 0xDE});
        EXPECT_EQ(link(bytes, bytes.size(), 1, false), 0);
        EXPECT_EQ(text(name), expected);
    }
}

TEST_F(DescriptorParsers, OleLinkFailures) {
    const std::string end = kOle + "Cannot find end of string in buffer.";
    const std::string begin = kOle + "Cannot find start of string in buffer.";
    const std::string noMarker = kOle + "Not enough data in buffer (while finding 0xDEAD).";
    const std::string linkPath = "C:\\shared\\plan.xls";
    const Bytes linked = oleLinkStream({}).bytes;
    struct Case {
        Bytes bytes;
        int32_t hits, status;
        Lines log;
        uint64_t refused = 0;  // the refused copy: 1 of the name, 2 of the path
        std::string stored = "(null)";
    };
    const Case cases[] = {
        {{0, 0xAD, 0xDE, 0}, 1, 6, {end}},
        {{0, 'a', 1, 0xFF, 0xFF, 0xAD, 0xDE}, 1, 6, {end}},
        {{1, 'a', 0, 0xFF, 0xFF, 0xAD, 0xDE}, 1, 6, {begin}},    // the stop byte is at offset 0
        {{'b', 'a', 0, 0xFF, 0xFF, 0xAD, 0xDE}, 1, 6, {begin}},  // no stop byte
        {linked, 1, 2, {kNoMemory, linkPath}, 1},
        {linked, 1, 2, {kNoMemory, linkPath}, 2, linkPath},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.log.back());
        path = old("earlier");
        results.refuseRequest(c.refused);
        EXPECT_EQ(link(c.bytes, c.bytes.size(), c.hits), c.status);
        EXPECT_EQ(log(), c.log);
        EXPECT_EQ(text(name), c.stored);
        EXPECT_STREQ(path, "earlier");
        reset();
    }
    const OleLinkBytes stream = oleLinkStream({});
    for (int32_t count = 0; count <= static_cast<int32_t>(stream.bytes.size()); ++count) {
        EXPECT_EQ(link(stream.bytes, count), count > stream.markerEnd ? 0 : 6) << count;
        EXPECT_EQ(log(), count > stream.markerEnd ? Lines{} : Lines{noMarker});
        reset();
    }
}

TEST(OleFileNames, CleaningReplacesWhatANameCannotHold) {
    // Each refused printable character, '&', the edges of the printable
    // range and a byte above it; the last byte lies outside the length.
    char text[] = "a/b\"c*d:e<f>g?h|i&j\\k\x1F\xE9 ~\x7F/";
    EXPECT_EQ(oleCleanFileName(text, sizeof text - 2), 1);
    EXPECT_STREQ(text, "a\\b'c+d;e[f]g#h!i$j\\k__ ~_/");
    char clean[] = "plain name.txt";
    EXPECT_EQ(oleCleanFileName(clean, sizeof clean - 1), 0);
    EXPECT_EQ(oleCleanFileName(nullptr, 5), 0);
}

}  // namespace
