// OLE attachments: the storage library's loading, the descriptor pass, the
// payload copy (links among them) and the whole-object fallback. The corpus
// package is extracted by tests/cli/corpus_cli_test.cpp; refused allocations
// are swept.
#include <gtest/gtest.h>

#include "tests/support/cfb_writer.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

// A message whose one attachment is an OLE object holding `object`.
Bytes oleMessage(const Bytes& object) {
    return buildMessage({.props = {Prop::string8(kTagSubject8, "ole")},
                         .attachments = {{.props = {Prop::int32(kTagAttachMethod, 6),
                                                    Prop::raw(kTagAttachDataObject, {oleObjectValue(object)})}}}});
}

Bytes range(const Bytes& bytes, size_t from, size_t count) {
    from = std::min(from, bytes.size());
    count = std::min(count, bytes.size() - from);
    return Bytes(bytes.begin() + static_cast<long>(from), bytes.begin() + static_cast<long>(from + count));
}

CfbEntryLayout compObj(const std::string& userType) {
    return {"\x01" "CompObj", compObjStream(userType)};
}
CfbEntryLayout native(const Bytes& bytes) { return {"\x01" "Ole10Native", bytes}; }

// A package whose payload size field says `declared`.
Bytes packageDeclaring(const OlePackageBytes& packed, uint32_t declared) {
    Bytes bytes = packed.bytes;
    patchLe32(bytes, static_cast<size_t>(packed.payloadStart) - 4, declared);
    return bytes;
}

TEST(OleExtraction, PayloadStreams) {
    Bytes main = patternBytes(5000);
    OlePackage package;
    package.payload = patternBytes(300, 7);
    OlePackageBytes packed = ole10NativePackage(package);
    const size_t at = static_cast<size_t>(packed.payloadStart);
    struct Case {
        const char* what;
        std::vector<CfbEntryLayout> entries;
        Bytes expected;
        std::string name;
        std::string path = "";  // of a link, which writes nothing and is flagged
    };
    const OleLink link;
    const Case cases[] = {
        {"PBrush: from byte 4, descriptor not parsed", {compObj("PBrush"), native(main)}, range(main, 4, 5000), ""},
        {"Acrobat: main stream from 0", {compObj("Acrobat Document"), native(packed.bytes)}, packed.bytes, ""},
        {"package declaring 0", {compObj("Package"), native(packageDeclaring(packed, 0))}, {}, "report.txt"},
        {"package declaring 10", {compObj("Package"), native(packageDeclaring(packed, 10))},
         range(package.payload, 0, 10), "report.txt"},
        {"package declaring more than it holds", {compObj("Package"), native(packageDeclaring(packed, 5000))},
         range(packageDeclaring(packed, 5000), at, 5000), "report.txt"},
        {"AttachDesc without CompObj starts at 0",
         {{"AttachDesc", attachDescStream("desc.doc")}, native(packed.bytes)}, packed.bytes, "desc.doc"},
        {"CompObj and AttachDesc: AttachDesc unread",
         {compObj("Acrobat Document"), {"AttachDesc", attachDescStream("desc.doc")}, {"Contents", main}}, main, ""},
        {"Primary from 176 whatever was said",
         {compObj("Acrobat Document"), {"\x06" "Primary", main}}, range(main, 176, 5000), ""},
        {"no descriptor: Workbook from 0", {{"Workbook", main}}, main, ""},
        {"stream of 4086 bytes", {{"CONTENTS", patternBytes(4086)}}, patternBytes(4086), ""},
        {"stream of 40000 bytes", {{"Package", patternBytes(40000, 3)}}, patternBytes(40000, 3), ""},
        {"link", {{"\x01" "Ole", oleLinkStream(link).bytes}}, {}, link.path, link.path},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        OpenedStream s(oleMessage(buildCfb(c.entries)));
        Extraction e = extractSubfile(s, 1);
        EXPECT_EQ(e.status, 0);
        EXPECT_EQ(e.bytes, c.expected);
        EXPECT_EQ(e.subfileName, c.name);
        EXPECT_EQ(e.subfilePath, c.path);
        EXPECT_EQ(e.resultFlags & 0xA, c.path.empty() ? 0u : 8u);
        EXPECT_EQ(e.size, static_cast<int64_t>(c.expected.size()));
        EXPECT_FALSE(e.leftOpen);
        EXPECT_EQ(Bytes(e.detectedFormat, e.detectedFormat + 16), Bytes(16, 0)) << "cleared after unpacking";
        EXPECT_TRUE(s.host.logLines().empty());
        EXPECT_EQ(s.results.liveBlocks(), 0u);
    }
}

// Not a storage, or a link's Ole stream without marker: the object goes out
// whole. A storage no reader accepts gives nothing.
TEST(OleExtraction, FallbacksAndTheirLogLines) {
    OleLinkBytes linked = oleLinkStream(OleLink{});
    Bytes noMarker = buildCfb({{"\x01" "Ole", range(linked.bytes, 0, static_cast<size_t>(linked.markerEnd) - 1)}});
    Bytes pdf = bytesOf("%PDF-1.4 not a storage at all");
    Bytes broken = buildCfb({{"Contents", patternBytes(100)}});
    broken[30] = 0x7F;  // sector shift
    Bytes shortCompObj = buildCfb({{"\x01" "CompObj", Bytes(8, 0)}, {"Contents", patternBytes(10)}});
    const std::string extraction = "oleExtractSubFileFromOleStream(): ";
    struct Case {
        Bytes object;
        int32_t status;
        Bytes expected;
        std::vector<std::string> log;
    };
    const Case cases[] = {
        {noMarker, 0, noMarker,
         {"oleProcessOleStream(): Not enough data in buffer (while finding 0xDEAD).",
          extraction + "Failed to find main OLE stream."}},
        {pdf, 0, pdf, {}},
        {broken, 6, {}, {extraction + "Failed to open OLE interface."}},
        {shortCompObj, 0, patternBytes(10),
         {"oleProcessCompObjStream(): Not enough data in buffer (while skipping 1st 32 bytes)."}},
    };
    for (const Case& c : cases) {
        OpenedStream s(oleMessage(c.object));
        Extraction e = extractSubfile(s, 1);
        EXPECT_EQ(e.status, c.status);
        EXPECT_EQ(e.bytes, c.expected);
        EXPECT_EQ(s.host.logLines(), c.log);
        if (c.object == pdf) {
            EXPECT_NE(e.detectedFormat[4] | e.detectedFormat[5], 0) << "the detected format stays";
        }
    }
}

TEST(OleExtraction, LibraryLoading) {
    Bytes stream = oleMessage(buildCfb({{"Contents", patternBytes(10)}}));
    {
        OpenedStream s(stream);
        s.host.context()->hostLoadLibrary = [](HostContext*, const char*, void**) { return 0; };
        Extraction e = extractSubfile(s, 1);
        EXPECT_EQ(e.status, 1);
        EXPECT_TRUE(e.leftOpen) << "no closing steps";
        EXPECT_EQ(s.container->oleLibrary, nullptr);
    }
    {
        OpenedStream s(stream);
        s.host.context()->hostGetProcAddress = [](HostContext*, void*, const char*) -> void* {
            return nullptr;
        };
        EXPECT_EQ(extractSubfile(s, 1).status, 23);
        EXPECT_NE(s.container->oleLibrary, nullptr);
        EXPECT_EQ(extractSubfile(s, 1).status, 23) << "a later extraction asks again";
    }
    {
        OpenedStream s(stream);
        EXPECT_EQ(extractSubfile(s, 1).status, 0);
        void* handle = s.container->oleLibrary;
        s.host.context()->hostLoadLibrary = [](HostContext*, const char*, void**) { return 0; };
        EXPECT_EQ(extractSubfile(s, 1).bytes, patternBytes(10)) << "loaded once per container";
        EXPECT_EQ(s.container->oleLibrary, handle);
    }
    {
        OpenedStream s(stream);
        s.host.context()->hostCreateTempIo = [](HostContext*, const char*, const char*) -> IoObject* {
            return nullptr;
        };
        Extraction e = extractSubfile(s, 1);
        EXPECT_EQ(e.status, 16);
        EXPECT_TRUE(e.leftOpen);
    }
}

}  // namespace
}  // namespace tneftest
