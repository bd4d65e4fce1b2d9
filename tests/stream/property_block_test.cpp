// The property block decoder (layouts, limits and partial blocks), and access
// to the values it located: conversions and limits (failed reads and refused
// memory of property access are swept in tests/sweeps; the path cut of long
// file names is checked through the names in tests/catalogue).
#include <gtest/gtest.h>

#include "stream/property_access.h"
#include "stream/records.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

// Opens a stream whose message holds `block` as its property block.
struct BlockUnderTest {
    explicit BlockUnderTest(const Bytes& block, TnefWriter::RecordOptions options = {}) {
        TnefWriter w;
        w.version().record(kLevelMessage, TNEFREC_MAPIPROPS, block, options);
        w.body("after");
        stream = std::make_unique<OpenedStream>(w.bytes());
        message = objectAt(stream->container, 0);
    }
    int32_t status() const { return stream->status; }
    const TnefPropRow& row(int i) const { return message->props[i]; }

    std::unique_ptr<OpenedStream> stream;
    TnefObject* message = nullptr;
};

// Fixed-size values kept inline (counted values are located: every string
// read through property access checks where, and a type without layout
// still has one value: PropertyAccess.ConversionsAndLimits). A block too
// short for a count leaves the object open for a later one, while the second
// block of an object is passed over.
TEST(PropertyBlock, InlineValuesAndShortBlocks) {
    Prop clsid = Prop::raw(0x00010048, {Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}});
    Prop countless = Prop::raw(0x00061003, {{5, 0, 0, 0}});
    countless.writeCount = false;  // exactly four bytes remain: no count is read
    TnefWriter w;
    w.version().record(kLevelMessage, TNEFREC_MAPIPROPS, {1, 0});
    w.messageProps({Prop::int32(0x00170003, -2), clsid, countless});
    w.messageProps({Prop::int32(0x00170003, 2), Prop::int32(0x00180003, 3)}).body("after");
    OpenedStream s(w.bytes());
    TnefObject* message = objectAt(s.container, 0);
    ASSERT_EQ(s.status, 0);
    ASSERT_EQ(message->propCount, 3);
    EXPECT_EQ(Bytes(message->props[0].values[0].bytes, message->props[0].values[0].bytes + 8),
              (Bytes{0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}))
        << "bytes behind a 4-byte value stay zero";
    EXPECT_EQ(message->props[1].values[0].bytes[15], 16);
    EXPECT_EQ(message->props[2].valueCount, 1);
    EXPECT_EQ(message->props[2].values[0].bytes[0], 5);
    EXPECT_EQ(message->dataSize, 5) << "the scan went on behind the blocks";
}

TEST(PropertyBlock, ValueLayouts) {
    // Each property is followed by a marker long, whose position shows how
    // many bytes the property before it took.
    struct Case {
        const char* what;
        Prop prop;
        uint32_t consumed;  // bytes of the property, tag included
    };
    Prop named6 = Prop::namedString(Prop::int32(0x80020003, 7), bytesOf("abcdef"));
    const Case cases[] = {
        {"string of 5, padded", Prop::string8(0x1000001E, "abcd"), 4 + 4 + 4 + 8},
        {"string-named long", named6, 4 + 16 + 4 + 4 + 8 + 4},
        {"numeric-named id 0xFFFE", Prop::named(Prop::int32(0xFFFE0003, 1), 9), 4 + 24 + 4},
        {"id 0x7FFF is not named", Prop::int32(0x7FFF0003, 1), 8},
        {"id 0xFFFF is not named", Prop::int32(0xFFFF0003, 1), 8},
        {"type 0 has no count", Prop::raw(0x10000000, {{9, 9}}), 4 + 4 + 4},
        {"double", Prop::int64(0x10000005, 5), 12},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Bytes block = propertyBlock({c.prop, Prop::int32(0x66660003, 0x12345678)});
        BlockUnderTest b(block);
        ASSERT_EQ(b.status(), 0);
        ASSERT_EQ(b.message->propCount, 2);
        EXPECT_EQ(b.row(1).tag, 0x66660003u) << "marker misplaced";
        EXPECT_EQ(4 + c.consumed + 8, block.size()) << "writer disagrees";
    }
}

// Counts at their limits, and blocks that fail whole: a failure leaves no
// rows and no summary.
TEST(PropertyBlock, CountLimitsAndFailures) {
    auto valueCount = [](int32_t count) {
        Prop p = Prop::raw(0x00011003, {});
        p.valueCount = count;
        return propertyBlock({p, Prop::int32(0x00100003, 1)});
    };
    struct Case {
        const char* what;
        Bytes block;
        int32_t status;
        int32_t propCount;
        TnefWriter::RecordOptions options = {};
    };
    const Bytes one = propertyBlock({Prop::int32(0x00170003, 1)});
    const Case cases[] = {
        {"count 65535", propertyBlock({}, 65535), 0, 65535},
        {"count 65536", propertyBlock({}, 65536), 4, 0},
        {"negative count", propertyBlock({}, -1), 2, 0},
        {"count 0", propertyBlock({}, 0), 0, 0},
        {"value count 65535", valueCount(65535), 0, 2},
        {"value count 65536", valueCount(65536), 4, 0},
        {"negative value count", valueCount(-1), 2, 0},
        {"value count 0", valueCount(0), 0, 2},
        {"wrong checksum", one, 4, 0, {.checksum = 0x1234}},
        {"block longer than the input", one, 4, 0, {.length = 400, .writeChecksum = false}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        BlockUnderTest b(c.block, c.options);
        EXPECT_EQ(b.status(), c.status);
        EXPECT_EQ(b.message->propCount, c.propCount);
        EXPECT_EQ(b.message->props == nullptr, c.status != 0);
        EXPECT_EQ(b.stream->container->summary == nullptr, c.status != 0);
        EXPECT_EQ(b.stream->close(), "");
    }
}

TEST(PropertyBlock, BlockCutInsidePropertyKeepsWhatCameBefore) {
    std::vector<Prop> props = {Prop::int32(0x00010003, 1), Prop::string8(0x0002001E, "two"),
                               Prop::int64(0x00030014, 3), Prop::int32(0x00040003, 4)};
    Bytes whole = propertyBlock(props);
    size_t startOfThird = 4 + propertyBytes(props[0]).size() + propertyBytes(props[1]).size();
    for (size_t cut = startOfThird + 1; cut < startOfThird + 12; ++cut) {
        BlockUnderTest b(Bytes(whole.begin(), whole.begin() + static_cast<long>(cut)));
        ASSERT_EQ(b.status(), 0) << cut;
        ASSERT_EQ(b.message->propCount, 4) << cut;
        EXPECT_EQ(b.row(1).values[0].located.length, 4) << cut;
        bool tagRead = cut >= startOfThird + 4;
        EXPECT_EQ(b.row(2).tag, tagRead ? 0x00030014u : 0u) << cut;
        EXPECT_FALSE(b.row(2).values != nullptr && b.row(2).values[0].bytes[0] == 3) << cut;
        EXPECT_EQ(b.row(3).tag, 0u) << cut;
    }
}

TEST(PropertyBlock, HostileLengthsDoNotWrap) {
    Prop longValue = Prop::binary(0x00010102, {1, 2});
    longValue.lengthOverride = 0xFFFFFFFE;
    Prop longName = Prop::namedString(Prop::int32(0x80000003, 1), bytesOf("n"));
    longName.nameLengthOverride = 0xFFFFFFFD;
    for (const Prop& p : {longValue, longName}) {
        BlockUnderTest b(propertyBlock({p, Prop::int32(0x00020003, 2)}));
        EXPECT_EQ(b.status(), 0);
        EXPECT_EQ(b.row(1).tag, 0u) << "decoding ended at the hostile length";
        if (p.lengthOverride) {
            EXPECT_EQ(b.row(0).values[0].located.length, -2) << "kept as read";
        }
    }
}

// What property access gave: its status, and the element's type, value flag
// and size (-1 without element).
struct Fetched {
    int32_t status;
    int32_t type = -1;
    int32_t hasValue = -1;
    int32_t size = -1;
    bool operator==(const Fetched&) const = default;
};

Fetched fetch(OpenedStream& s, uint32_t tag) {
    MetaElement* element = nullptr;
    HostAllocator* allocator = s.results.allocator();
    Fetched out{tnefGetProperty(s.container, allocator, objectAt(s.container, 0), tag, &element)};
    if (element != nullptr) {
        out.type = element->type;
        out.hasValue = element->hasValue;
        out.size = element->size;
        tnefFreeElement(allocator, element);
    }
    EXPECT_EQ(s.results.liveBlocks(), 0u);
    return out;
}

TEST(PropertyAccess, ConversionsAndLimits) {
    OpenedStream s(buildMessage({.props = {
        Prop::raw(0x00010001, {}), Prop::raw(0x00020048, {Bytes(16, 9)}),
        Prop::raw(0x00031003, {{1, 0, 0, 0}}), Prop::binary(0x00040102, Bytes(65535, 1)),
        Prop::binary(0x00050102, Bytes(65536, 2)), Prop::int32(0x00060002, -5),
        Prop::int64(0x00080014, 0x1122334455667788ull)}}));
    const std::pair<uint32_t, Fetched> cases[] = {
        {0x00010001, {0, 0, 0, 0}},      // PT_NULL: no value
        {0x00020048, {0, 2, 1, 0}},      // CLSID: 16 bytes, size 0
        {0x00030003, {1}},               // a multi-value row is only found with the flag
        {0x00031003, {4, 0, 0, 0}},      // ... and then is not converted, like any unknown type
        {0x00040102, {0, 2, 1, 65535}},  // the largest value an element holds
        {0x00050102, {2}},               // one byte more is refused
        {0x00060002, {0, 3, 1, 0}},
        {0x00080014, {0, 5, 1, 0}},
    };
    for (const auto& [tag, expected] : cases) {
        Fetched f = fetch(s, tag);
        EXPECT_TRUE(f == expected) << std::hex << tag << std::dec << ": status " << f.status << ", type "
                                   << f.type << ", value flag " << f.hasValue << ", size " << f.size;
    }
}

}  // namespace
}  // namespace tneftest
