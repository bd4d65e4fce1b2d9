// Listing: the tree with and without the root entry, each field, and the
// statuses of bad requests (refused memory is swept in tests/sweeps).
#include <gtest/gtest.h>

#include <cstring>

#include "reader/operations.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

constexpr uint64_t kSubmitTime = 0x01C9CC5E12345678ull;
constexpr uint64_t kModified = 0x01D0000011112222ull;
constexpr uint64_t kCreated = 0x01D0000033334444ull;

Bytes listedStream() {
    return buildMessage(
        {.body = "0123456789",
         .props = {Prop::string8(kTagSubject8, "Hello"), Prop::time(kTagClientSubmitTime, kSubmitTime),
                   Prop::int32(kTagMessageCodepage, 1251)},
         .attachments = {{.title = "plain.txt",
                          .data = bytesOf("abc"),
                          .props = {Prop::time(kTagLastModificationTime, kModified),
                                    Prop::time(kTagCreationTime, kCreated)}},
                         {.props = {Prop::int32(kTagAttachMethod, 6),
                                    Prop::raw(kTagAttachDataObject, {Bytes(40, 7)}),
                                    Prop::time(kTagCreationTime, kCreated)}},
                         {.title = "Fwd", .props = {Prop::int32(kTagAttachMethod, 5)}},
                         {.title = "ref.doc", .props = {Prop::int32(kTagAttachMethod, 2)}}}});
}

struct Listed {
    int32_t status;
    std::string name;
    int32_t type;
    int32_t size;
    int32_t parent;
    std::vector<int32_t> children;
    CharsetId charset;
    uint64_t time;
};

Listed list(OpenedStream& s, int32_t index) {
    SubfileInfo info{};
    info.charset = -1;
    info.childCount = -1;
    Listed out{};
    out.status = tnefGetSubfileInfo(s.container, index, &info, &s.memory);
    if (info.name != nullptr) out.name = info.name;
    out.type = info.type;
    out.size = info.size;
    out.parent = info.parentIndex;
    if (info.children != nullptr) out.children.assign(info.children, info.children + info.childCount);
    out.charset = info.charset;
    std::memcpy(&out.time, info.time, 8);
    s.results.release(info.name);
    s.results.release(info.children);
    return out;
}

TEST(SubfileInfo, TreeWithAndWithoutRootEntry) {
    for (uint32_t flags : {0u, 0x40000u}) {
        OpenedStream s(listedStream(), flags);
        ASSERT_EQ(s.status, 0);
        const int32_t o = flags != 0 ? 1 : 0;
        const std::string p = flags != 0 ? "root/" : "";
        if (o == 1) {
            Listed root = list(s, 0);
            EXPECT_EQ(root.status, 0);
            EXPECT_EQ(root.name, "root/");
            EXPECT_EQ(root.type, 3);
            EXPECT_EQ(root.parent, -1);
            EXPECT_EQ(root.children, std::vector<int32_t>{1});
        }
        Listed message = list(s, o);
        EXPECT_EQ(message.name, p + "Hello.mail");
        EXPECT_EQ(message.type, 0);
        EXPECT_EQ(message.size, 10);
        EXPECT_EQ(message.parent, -1 + o);
        EXPECT_EQ(message.children, (std::vector<int32_t>{1 + o, 2 + o, 3 + o, 4 + o}));
        EXPECT_EQ(message.charset, 6) << "from the message code page";
        EXPECT_EQ(message.time, kSubmitTime);

        const struct {
            const char* name;
            int32_t type;
            int32_t size;
            uint64_t time;
        } attachments[] = {{"plain.txt", 1, 3, kModified},
                           {"zd2.tmp", 2, 24, kCreated},
                           {"Fwd_zd3", 1, 0, 0},
                           {"ref.doc", 1, 0, 0}};
        for (int32_t i = 0; i < 4; ++i) {
            Listed a = list(s, i + 1 + o);
            EXPECT_EQ(a.status, 0);
            EXPECT_EQ(a.name, p + attachments[i].name);
            EXPECT_EQ(a.type, attachments[i].type) << i;
            EXPECT_EQ(a.size, attachments[i].size) << i;
            EXPECT_EQ(a.parent, o) << i;
            EXPECT_TRUE(a.children.empty()) << i;
            EXPECT_EQ(a.charset, -1) << i << ": not written on attachments";
            EXPECT_EQ(a.time, attachments[i].time) << i;
        }
        EXPECT_EQ(list(s, 5 + o).status, 34);
        EXPECT_EQ(list(s, -1).status, 34);
        EXPECT_EQ(s.results.liveBlocks(), 0u);
    }
}

TEST(SubfileInfo, BadArguments) {
    OpenedStream s(listedStream());
    SubfileInfo info{};
    ResultMemory noOwner{nullptr, s.memory.allocator};
    EXPECT_EQ(tnefGetSubfileInfo(nullptr, 0, &info, &s.memory), 34);
    EXPECT_EQ(tnefGetSubfileInfo(s.container, 0, nullptr, &s.memory), 34);
    EXPECT_EQ(tnefGetSubfileInfo(s.container, 0, &info, nullptr), 34);
    EXPECT_EQ(tnefGetSubfileInfo(s.container, 0, &info, &noOwner), 34);
    s.container->objectCount += 1;  // a list that runs out before the count
    EXPECT_EQ(tnefGetSubfileInfo(s.container, 5, &info, &s.memory), 20);
    s.container->objectCount -= 1;
}

TEST(SubfileInfo, MessageWithoutAttachmentsOrCodePage) {
    OpenedStream s(buildMessage({.props = {Prop::string8(kTagSubject8, "x")}}));
    Listed message = list(s, 0);
    EXPECT_EQ(message.status, 0);
    EXPECT_TRUE(message.children.empty());
    EXPECT_EQ(message.charset, 0);
    EXPECT_EQ(message.time, 0u);
    EXPECT_EQ(message.size, 0);
}

TEST(SubfileInfo, UnnamableMessageGivesSix) {
    OpenedStream s(buildMessage({.body = "b", .attachments = {{}}}));
    EXPECT_EQ(list(s, 0).status, 6);
    EXPECT_EQ(list(s, 1).name, "zd1.tmp");
}

TEST(SubfileInfo, FirstObjectThatIsAnAttachment) {
    TnefWriter w;
    w.attachRendData().attachTitle("first.txt").attachRendData();
    OpenedStream s(w.bytes());
    Listed first = list(s, 0);
    EXPECT_EQ(first.type, 1);
    EXPECT_EQ(first.children, std::vector<int32_t>{1});
    EXPECT_EQ(first.name, "first.txt");
}

}  // namespace
}  // namespace tneftest
