// The record scanner: where opening ends, the places objects come from, and
// the settling after the scan (the message's charset, the kind and data
// range of attachments).
#include <gtest/gtest.h>

#include "stream/records.h"
#include "tests/support/reader_fixture.h"
#include "tests/support/rich_streams.h"

namespace tneftest {
namespace {

using tnefhost::IoOp;

// These values as little-endian longs, one after the other.
Bytes longs(std::initializer_list<uint32_t> values) {
    Bytes b;
    for (uint32_t v : values) putLe32(b, v);
    return b;
}

// Where opening ends: before the container exists (with the input left open
// when it can't be closed or the container is refused), in the signature and
// key with no object, or at a record that can't be read with the objects
// before it. Close closes the input, never destroys it, and leaves nothing.
TEST(Scanner, WhereOpeningEnds) {
    TnefWriter withBadLevel;
    withBadLevel.version().body("hello").attachRendData();
    withBadLevel.raw({3, 0x0C, 0x80, 0, 0, 1, 0, 0, 0, 'x', 'x', 0});
    withBadLevel.attachRendData();  // never looked at
    auto titleOfLength = [](uint32_t length) {
        TnefWriter w;
        w.version().record(kLevelAttachment, TNEFREC_ATTACHTITLE, bytesOf("x"), {.length = length});
        return w.attachRendData().bytes();
    };
    const Bytes rich = wideRtfMessage();
    struct Case {
        const char* what;
        Bytes stream;
        int32_t status;
        int32_t objects;  // -1: no container
        void (*arrange)(OpenedStream&) = nullptr;
        bool leftOpen = false;
    };
    const Case cases[] = {
        {"no open", rich, 4, -1, [](OpenedStream& s) { s.input.removeSlot(IoOp::kOpen); }},
        {"open refused", rich, 4, -1, [](OpenedStream& s) { s.input.failOperation(IoOp::kOpen, 1); }},
        {"no close", rich, 4, -1, [](OpenedStream& s) { s.input.removeSlot(IoOp::kClose); }, true},
        {"container refused", rich, 2, -1, [](OpenedStream& s) { s.host.memory().refuseRequest(1); }, true},
        // Inputs shorter than the signature: the truncation sweep in container_test.
        {"wrong signature", TnefWriter(0x223E9F79).version().bytes(), 4, 0},
        {"signature and key, no record", TnefWriter().bytes(), 0, 0},  // as for a key cut short
        {"key cannot be skipped", noteMessage("s", "hello", {}), 4, 0,  // seek 1 is open's rewind
         [](OpenedStream& s) { s.input.failOperation(IoOp::kSeek, 2); }},
        {"level byte 3", withBadLevel.bytes(), 0, 2},
        // Lengths near 2^32 stop the scan at the record.
        {"length 0x7FFFFFFE", titleOfLength(0x7FFFFFFE), 0, 1},
        {"length 0xFFFFFFFF", titleOfLength(0xFFFFFFFF), 0, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        OpenedStream s(c.stream, 0, OpenedStream::Deferred{});
        if (c.arrange != nullptr) c.arrange(s);
        s.open();
        EXPECT_EQ(s.status, c.status);
        EXPECT_EQ(s.container == nullptr ? -1 : s.container->objectCount, c.objects);
        EXPECT_EQ(s.container != nullptr && s.container->summary == nullptr, c.objects == 0);
        EXPECT_EQ(s.close(), "");
        EXPECT_EQ(s.input.isOpen(), c.leftOpen);
        EXPECT_EQ(s.input.calls(IoOp::kDestroy), 0u);
    }
}

// The charset of the message: from the OEM code page record (its first long),
// else from the internet code page property.
TEST(Scanner, CharsetOfTheMessage) {
    struct Case {
        Bytes oem;
        std::optional<int32_t> internet;
        CharsetId charset;
        TnefWriter::RecordOptions options = {};
    };
    const Case cases[] = {
        {longs({932, 1250}), std::nullopt, kCharsetShiftJis},
        {longs({1258}), std::nullopt, 13},  // the table's last row
        {{0xE4, 0x04}, std::nullopt, 0},  // fewer than 4 bytes: code page 0
        {longs({1251}), std::nullopt, 0, {.checksum = 1}},  // bad checksum: not taken
        {longs({1251}), 1250, 6},
        {longs({437}), 1250, 5},  // no host number for the OEM code page
        {{}, 437, 0},
    };
    for (const Case& c : cases) {
        TnefWriter w;
        w.version();
        if (!c.oem.empty()) w.record(kLevelMessage, TNEFREC_OEMCODEPAGE, c.oem, c.options);
        std::vector<Prop> props = {Prop::int32(0x00170003, 1)};
        if (c.internet) props.push_back(Prop::int32(kTagInternetCodepage, *c.internet));
        OpenedStream s(w.messageProps(props).body("b").bytes());
        EXPECT_EQ(objectAt(s.container, 0)->charset, c.charset);
        EXPECT_EQ(objectAt(s.container, 0)->declaredCharset, c.charset);
        EXPECT_EQ(objectAt(s.container, 0)->dataSize, 1) << "the scan went on";
    }
}

// Level 2 data before any attachment goes to the message; level 1 records
// after the first attachment go nowhere. An attachment keeps its first title
// with text, whatever its checksum; a title cut short ends at the bytes read.
TEST(Scanner, WhereRecordsGo) {
    TnefWriter w;
    w.version().body("text body");
    w.attachData(bytesOf("stray"));
    int64_t strayPos = w.lastDataPosition();
    w.attachRendData().attachData(bytesOf("first")).body("late body");
    w.record(kLevelAttachment, TNEFREC_ATTACHTITLE, {});
    w.record(kLevelAttachment, TNEFREC_ATTACHTITLE, bytesOf("t.txt"), {.checksum = 7}).attachTitle("second");
    w.attachRendData();
    w.record(kLevelMessage, TNEFREC_RECIPTABLE, longs({0}));
    w.attachData(bytesOf("second!"));
    int64_t secondPos = w.lastDataPosition();
    w.record(kLevelAttachment, TNEFREC_ATTACHTITLE, bytesOf("abc"), {.length = 50, .writeChecksum = false});

    OpenedStream s(w.bytes());
    EXPECT_EQ(s.status, 0);
    ASSERT_EQ(s.container->objectCount, 3);
    TnefObject* message = objectAt(s.container, 0);
    EXPECT_EQ(message->dataPos, strayPos);
    EXPECT_EQ(message->dataSize, 5);
    EXPECT_EQ(message->recipTableSize, 0);
    EXPECT_STREQ(objectAt(s.container, 1)->attachTitle, "t.txt");
    TnefObject* second = objectAt(s.container, 2);
    EXPECT_EQ(second->dataPos, secondPos);
    EXPECT_EQ(second->dataSize, 7);
    EXPECT_STREQ(second->attachTitle, "abc");
}

// Settling after the scan: the kind and data range of attachments.
TEST(ObjectSettling, KindAndRangeOfAttachments) {
    const Prop method1 = Prop::int32(kTagAttachMethod, 1), method6 = Prop::int32(kTagAttachMethod, 6);
    const Prop binary = Prop::binary(kTagAttachDataBinary, Bytes(9, 1));
    struct Case {
        const char* what;
        AttachmentLayout attachment;
        int32_t kind;
        int32_t size;
    };
    const Case cases[] = {
        {"method 1 without data record: binary property", {.props = {method1, binary}}, 0, 9},
        {"method 1 with data record: property not asked",
         {.data = Bytes(3, 1), .props = {method1, binary}}, 0, 3},
        {"method 6: object range replaces the data record",
         {.data = Bytes(3, 1), .props = {method6, Prop::raw(kTagAttachDataObject, {Bytes(40, 7)})}}, 2, 24},
        {"method 5 without object", {.data = Bytes(3, 1), .props = {Prop::int32(kTagAttachMethod, 5)}}, 1, 3},
        {"object shorter than its identifier",
         {.props = {method6, Prop::raw(kTagAttachDataObject, {Bytes(10, 1)})}}, 2, -6},
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
