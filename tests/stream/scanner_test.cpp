// The record scanner: its failure table and the places objects come from.
#include <gtest/gtest.h>

#include "stream/records.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

using tnefhost::IoOp;

Bytes le32(uint32_t v) {
    Bytes b;
    putLe32(b, v);
    return b;
}

// A message with a text body and one attachment, the base of most cases.
TnefWriter messageWithAttachment() {
    TnefWriter w;
    w.version().body("hello").attachRendData().attachTitle("a.txt").attachData(bytesOf("DATA"));
    return w;
}

TEST(Scanner, SignatureAndKey) {
    struct Case {
        const char* what;
        Bytes stream;
        int32_t status;
    };
    const Case cases[] = {
        {"empty input", {}, 4},
        {"three bytes", {0x78, 0x9F, 0x3E}, 4},
        {"wrong signature", TnefWriter(0x223E9F79).version().bytes(), 4},
        {"signature only, no key", le32(0x223E9F78), 0},
        {"signature and key, no record", TnefWriter().bytes(), 0},
    };
    for (const Case& c : cases) {
        OpenedStream s(c.stream);
        EXPECT_EQ(s.status, c.status) << c.what;
        ASSERT_NE(s.container, nullptr) << c.what;
        EXPECT_EQ(s.container->objectCount, 0) << c.what;
        EXPECT_EQ(s.container->summary, nullptr) << c.what;
        EXPECT_EQ(s.close(), "") << c.what;
    }
}

TEST(Scanner, KeyThatCannotBeSkippedFails) {
    OpenedStream s(messageWithAttachment().bytes(), 0, OpenedStream::Deferred{});
    s.input.failOperation(IoOp::kSeek, 2);  // the first seek is open's rewind
    s.open();
    EXPECT_EQ(s.status, 4);
    EXPECT_EQ(s.container->objectCount, 0);
}

TEST(Scanner, EndsOfTheRecordLoop) {
    Bytes full = messageWithAttachment().bytes();
    TnefWriter withBadLevel = messageWithAttachment();
    withBadLevel.raw({3, 0x0C, 0x80, 0, 0, 1, 0, 0, 0, 'x', 'x', 0});
    withBadLevel.attachRendData();  // never looked at
    Bytes insideHeader = full;
    insideHeader.insert(insideHeader.end(), {1, 0x0C, 0x80, 0});

    struct Case {
        const char* what;
        Bytes stream;
        int32_t objects;
    };
    const Case cases[] = {
        {"record boundary", full, 2},
        {"inside a header", insideHeader, 2},
        {"level byte 3", withBadLevel.bytes(), 2},
    };
    for (const Case& c : cases) {
        OpenedStream s(c.stream);
        EXPECT_EQ(s.status, 0) << c.what;
        EXPECT_EQ(s.container->objectCount, c.objects) << c.what;
    }
}

TEST(Scanner, RecordRunningPastTheEndIsNotedWhole) {
    TnefWriter w;
    w.version();
    w.record(kLevelMessage, TNEFREC_BODY, bytesOf("short"), {.length = 1000});
    OpenedStream s(w.bytes());
    EXPECT_EQ(s.status, 0);
    TnefObject* message = objectAt(s.container, 0);
    EXPECT_EQ(message->dataSize, 1000);
    EXPECT_EQ(message->dataPos, w.lastDataPosition());
}

TEST(Scanner, LengthsNearTwoToThe32StopTheScan) {
    for (uint32_t length : {0x7FFFFFFEu, 0x7FFFFFFFu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        TnefWriter w;
        w.version().record(kLevelAttachment, TNEFREC_ATTACHTITLE, bytesOf("x"), {.length = length});
        w.attachRendData();
        OpenedStream s(w.bytes());
        EXPECT_EQ(s.status, 0) << length;
        EXPECT_EQ(s.container->objectCount, 1) << length;
        EXPECT_EQ(s.close(), "") << length;
    }
}

TEST(Scanner, ChecksumsOfKeptRecords) {
    TnefWriter w;
    Bytes codePage = le32(1251);
    w.version().record(kLevelMessage, TNEFREC_OEMCODEPAGE, codePage, {.checksum = 1});
    w.attachRendData().record(kLevelAttachment, TNEFREC_ATTACHTITLE, bytesOf("t.txt"),
                              {.checksum = 7});
    w.attachData(bytesOf("x"));
    OpenedStream s(w.bytes());
    EXPECT_EQ(s.status, 0);
    EXPECT_EQ(objectAt(s.container, 0)->charset, 0) << "bad checksum: code page not taken";
    ASSERT_NE(objectAt(s.container, 1)->attachTitle, nullptr) << "bad checksum: title stands";
    EXPECT_STREQ(objectAt(s.container, 1)->attachTitle, "t.txt");
    EXPECT_EQ(objectAt(s.container, 1)->dataSize, 1) << "the scan went on";
}

TEST(Scanner, OemCodePageLengths) {
    struct Case {
        Bytes data;
        CharsetId charset;
    };
    Bytes eight = le32(932);
    Bytes more = le32(1250);
    eight.insert(eight.end(), more.begin(), more.end());
    const Case cases[] = {
        {eight, kCharsetShiftJis},
        {le32(1252), 7},
        {{0xE4, 0x04}, 0},  // fewer than 4 bytes: code page 0
        {le32(437), 0},     // no host number
    };
    for (const Case& c : cases) {
        TnefWriter w;
        w.version().record(kLevelMessage, TNEFREC_OEMCODEPAGE, c.data);
        OpenedStream s(w.bytes());
        EXPECT_EQ(objectAt(s.container, 0)->charset, c.charset);
    }
}

TEST(Scanner, TitleCutShortEndsAtTheBytesRead) {
    TnefWriter w;
    w.version().attachRendData();
    w.record(kLevelAttachment, TNEFREC_ATTACHTITLE, bytesOf("abc"),
             {.length = 50, .writeChecksum = false});
    OpenedStream s(w.bytes());
    EXPECT_EQ(s.status, 0);
    EXPECT_STREQ(objectAt(s.container, 1)->attachTitle, "abc");
}

TEST(Scanner, FirstTitleWins) {
    TnefWriter w;
    w.version().attachRendData().attachTitle("first").attachTitle("second");
    w.record(kLevelAttachment, TNEFREC_ATTACHTITLE, {});  // empty: passed over
    OpenedStream s(w.bytes());
    EXPECT_STREQ(objectAt(s.container, 1)->attachTitle, "first");
}

TEST(Scanner, WhereRecordsGo) {
    // Level 2 data before any attachment goes to the message; level 1
    // records after the first attachment go nowhere.
    TnefWriter w;
    w.version().body("text body");
    int64_t bodyPos = w.lastDataPosition();
    w.attachData(bytesOf("stray"));
    int64_t strayPos = w.lastDataPosition();
    w.attachRendData().attachData(bytesOf("first")).body("late body");
    w.attachRendData();
    w.record(kLevelMessage, TNEFREC_RECIPTABLE, le32(0));
    w.attachData(bytesOf("second!"));
    int64_t secondPos = w.lastDataPosition();

    OpenedStream s(w.bytes());
    ASSERT_EQ(s.container->objectCount, 3);
    TnefObject* message = objectAt(s.container, 0);
    EXPECT_NE(bodyPos, strayPos);
    EXPECT_EQ(message->kind, kObjectMessage);
    EXPECT_EQ(message->parentIndex, -1);
    EXPECT_EQ(message->dataPos, strayPos);
    EXPECT_EQ(message->dataSize, 5);
    EXPECT_EQ(message->recipTableSize, 0);
    TnefObject* second = objectAt(s.container, 2);
    EXPECT_EQ(second->kind, kObjectAttachment);
    EXPECT_EQ(second->parentIndex, 0);
    EXPECT_EQ(second->dataPos, secondPos);
    EXPECT_EQ(second->dataSize, 7);
    EXPECT_EQ(s.container->currentObject, second);
}

TEST(Scanner, StreamOpeningWithAnAttachmentHasNoMessage) {
    TnefWriter w;
    w.attachRendData().attachData(bytesOf("x")).version().body("ignored");
    OpenedStream s(w.bytes());
    ASSERT_EQ(s.container->objectCount, 1);
    EXPECT_EQ(objectAt(s.container, 0)->kind, kObjectAttachment);
    EXPECT_EQ(objectAt(s.container, 0)->dataSize, 1);
    EXPECT_EQ(s.container->summaryCount, 7);
}

TEST(Scanner, MemoryRefusals) {
    // The object of the first level 1 record: the loop ends with 2.
    {
        OpenedStream s(messageWithAttachment().bytes(), 0, OpenedStream::Deferred{});
        s.host.memory().refuseRequest(2);  // 1: container, 2: message object
        s.open();
        EXPECT_EQ(s.status, 2);
        EXPECT_EQ(s.container->objectCount, 0);
        EXPECT_EQ(s.close(), "");
    }
    // The title's bytes: passed over, the scan goes on.
    {
        OpenedStream s(messageWithAttachment().bytes(), 0, OpenedStream::Deferred{});
        s.host.memory().refuseRequest(6);  // container, 2 x (object, cell), title
        s.open();
        EXPECT_EQ(s.status, 0);
        ASSERT_EQ(s.container->objectCount, 2);
        EXPECT_EQ(objectAt(s.container, 1)->attachTitle, nullptr);
        EXPECT_EQ(objectAt(s.container, 1)->dataSize, 4);
    }
}

}  // namespace
}  // namespace tneftest
