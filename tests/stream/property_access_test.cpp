// Property access and object settling: conversions, limits, the path cut of
// long file names, and the kind and data range of attachments.
#include <gtest/gtest.h>

#include "stream/property_access.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

using tnefhost::IoOp;

struct Fetched {
    int32_t status;
    int32_t type = -1;
    int32_t hasValue = -1;
    int32_t size = -1;
    Bytes value;
};

Fetched fetch(OpenedStream& s, int32_t place, uint32_t tag) {
    MetaElement* element = nullptr;
    HostAllocator* allocator = s.results.allocator();
    Fetched out{tnefGetProperty(s.container, allocator, objectAt(s.container, place), tag, &element)};
    if (element != nullptr) {
        out.type = element->type;
        out.hasValue = element->hasValue;
        out.size = element->size;
        if (element->value != 0 && element->size > 0) {
            auto* p = reinterpret_cast<const uint8_t*>(element->value);
            out.value.assign(p, p + element->size);
        }
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
        Prop::raw(0x00070099, {}), Prop::int64(0x00080014, 0x1122334455667788ull)}}));
    struct Case {
        uint32_t tag;
        int32_t status, type, hasValue, size;
    };
    const Case cases[] = {
        {0x00010001, 0, 0, 0, 0},      // PT_NULL: no value
        {0x00020048, 0, 2, 1, 0},      // CLSID: 16 bytes, size 0
        {0x00030003, 1, -1, -1, -1},   // a multi-value row is only found with the flag
        {0x00031003, 4, 0, 0, 0},      // ... and then is not converted
        {0x00040102, 0, 2, 1, 65535},  // the largest value an element holds
        {0x00050102, 2, -1, -1, -1},   // one byte more is refused
        {0x00060002, 0, 3, 1, 0},
        {0x00070099, 4, 0, 0, 0},
        {0x00080014, 0, 5, 1, 0},
        {0x00090003, 1, -1, -1, -1},
    };
    for (const Case& c : cases) {
        Fetched f = fetch(s, 0, c.tag);
        EXPECT_EQ(f.status, c.status) << std::hex << c.tag;
        EXPECT_EQ(f.type, c.type) << std::hex << c.tag;
        EXPECT_EQ(f.hasValue, c.hasValue) << std::hex << c.tag;
        EXPECT_EQ(f.size, c.size) << std::hex << c.tag;
    }
}

TEST(PropertyAccess, PathCutOfLongFileNames) {
    Bytes backslash16 = {'\\', 0, 0, 0};
    struct Case {
        Prop name;
        int32_t method;
        Bytes value;
    };
    const Case cases[] = {
        {Prop::string8(kTagAttachLongFilename8, "C:\\a/b.txt"), 1, bytesOf(std::string("b.txt\0", 6))},
        {Prop::string8(kTagAttachLongFilename8, "dir\\", false), 1, bytesOf("dir\\")},
        {Prop::string8(kTagAttachLongFilename8, "dir\\"), 1, Bytes{0}},
        {Prop::string8(kTagAttachLongFilename8, "C:\\a\\b.txt"), 6, bytesOf(std::string("C:\\a\\b.txt\0", 11))},
        {Prop::unicode(kTagAttachLongFilename16, "x/y\\z.doc"), 0, utf16(std::string("z.doc\0", 6))},
        {Prop::unicode(kTagAttachLongFilename16, "dir/", false), 0, utf16("dir/")},
        {Prop::raw(kTagAttachLongFilename16, {backslash16}), 0, Bytes{0, 0}},
        {Prop::unicode(kTagAttachLongFilename16, "a\\b"), 2, utf16(std::string("a\\b\0", 4))},
    };
    for (const Case& c : cases) {
        OpenedStream s(buildMessage({.attachments = {{.props = {Prop::int32(kTagAttachMethod, c.method), c.name}}}}));
        EXPECT_EQ(fetch(s, 1, c.name.tag).value, c.value);
        EXPECT_EQ(fetch(s, 1, c.name.tag).value, c.value) << "the input is never cut";
    }
}

TEST(PropertyAccess, FailuresLeaveNothing) {
    Bytes stream = buildMessage({.props = {Prop::string8(kTagSubject8, "subject")}});
    {
        OpenedStream s(stream);
        s.input.failOperation(IoOp::kSeek, 1);
        EXPECT_EQ(fetch(s, 0, kTagSubject8).status, 4);
    }
    {
        OpenedStream s(stream);
        s.input.failOperation(IoOp::kRead, 1);
        EXPECT_EQ(fetch(s, 0, kTagSubject8).status, 4);
    }
    for (uint64_t n : {1u, 2u}) {
        OpenedStream s(stream);
        s.results.refuseRequest(n);
        EXPECT_EQ(fetch(s, 0, kTagSubject8).status, 2) << n;
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
        {"no method", {.data = Bytes(2, 1), .props = {Prop::string8(kTagAttachLongFilename8, "n")}}, 0, 2},
    };
    for (const Case& c : cases) {
        OpenedStream s(buildMessage({.attachments = {c.attachment}}));
        EXPECT_EQ(objectAt(s.container, 1)->attachKind, c.kind) << c.what;
        EXPECT_EQ(objectAt(s.container, 1)->dataSize, c.size) << c.what;
    }
}

TEST(ObjectSettling, CharsetOfTheFirstObject) {
    struct Case {
        std::optional<uint32_t> oem;
        std::optional<int32_t> internet;
        CharsetId charset;
    };
    const Case cases[] = {{1251, 1250, 6}, {437, 1250, 5}, {std::nullopt, 932, 1}, {std::nullopt, 437, 0}};
    for (const Case& c : cases) {
        MessageLayout m{.oemCodePage = c.oem, .props = {Prop::int32(0x00170003, 1)}};
        if (c.internet) m.props.push_back(Prop::int32(kTagInternetCodepage, *c.internet));
        OpenedStream s(buildMessage(m));
        EXPECT_EQ(objectAt(s.container, 0)->charset, c.charset);
        EXPECT_EQ(objectAt(s.container, 0)->declaredCharset, c.charset);
    }
}

}  // namespace
}  // namespace tneftest
