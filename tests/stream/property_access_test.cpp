// Property access and object settling: conversions and limits, and the kind
// and data range of attachments (failed reads and refused memory of property
// access are swept in tests/sweeps). The path cut of long file names is checked
// through the names in tests/catalogue/subfile_info_test.cpp.
#include <gtest/gtest.h>

#include "stream/property_access.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

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

TEST(ObjectSettling, KindAndRangeOfAttachments) {
    Bytes object(40, 7);
    struct Case {
        const char* what;
        AttachmentLayout attachment;
        int32_t kind;
        int32_t size;
    };
    const Case cases[] = {
        {"method 1 without data record: binary property",
         {.props = {Prop::int32(kTagAttachMethod, 1), Prop::binary(kTagAttachDataBinary, Bytes(9, 1))}}, 0, 9},
        {"method 1 with data record: property not asked",
         {.data = Bytes(3, 1), .props = {Prop::int32(kTagAttachMethod, 1), Prop::binary(kTagAttachDataBinary, Bytes(9, 1))}}, 0, 3},
        {"method 6: object range replaces the data record",
         {.data = Bytes(3, 1), .props = {Prop::int32(kTagAttachMethod, 6), Prop::raw(kTagAttachDataObject, {object})}}, 2, 24},
        {"method 5 without object", {.data = Bytes(3, 1), .props = {Prop::int32(kTagAttachMethod, 5)}}, 1, 3},
        {"object shorter than its identifier",
         {.props = {Prop::int32(kTagAttachMethod, 6), Prop::raw(kTagAttachDataObject, {Bytes(10, 1)})}}, 2, -6},
        {"by reference", {.props = {Prop::int32(kTagAttachMethod, 4)}}, 3, 0},
    };
    for (const Case& c : cases) {
        OpenedStream s(buildMessage({.attachments = {c.attachment}}));
        EXPECT_EQ(objectAt(s.container, 1)->attachKind, c.kind) << c.what;
        EXPECT_EQ(objectAt(s.container, 1)->dataSize, c.size) << c.what;
    }
}

}  // namespace
}  // namespace tneftest
