// Listing: the tree with and without the root entry, each field, the names
// by their rules in their order (cleaning and stems), and the statuses of bad
// requests (refused memory is swept in tests/sweeps).
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
                                    Prop::time(kTagCreationTime, kCreated)}}}});
}

struct Listed {
    int32_t status, type, size, parent;
    std::string name;
    std::vector<int32_t> children;
    CharsetId charset;
    uint64_t time;
    int32_t rootMark = -1;  // left alone except on the root entry
    bool operator==(const Listed&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Listed& l) {
    out << l.status << " type " << l.type << " size " << l.size << " parent " << l.parent << " \"" << l.name
        << "\" children";
    for (int32_t child : l.children) out << ' ' << child;
    return out << " charset " << l.charset << " time " << l.time << " root mark " << l.rootMark;
}

Listed list(OpenedStream& s, int32_t index) {
    SubfileInfo info{};
    info.charset = -1;
    info.childCount = -1;
    info.rootMark = -1;
    int32_t status = tnefGetSubfileInfo(s.container, index, &info, &s.memory);
    Listed out{status, info.type, info.size, info.parentIndex, info.name != nullptr ? info.name : "", {},
               info.charset, 0, info.rootMark};
    if (info.children != nullptr) out.children.assign(info.children, info.children + info.childCount);
    std::memcpy(&out.time, info.time, 8);
    s.results.release(info.name);
    s.results.release(info.children);
    return out;
}

// Only the first object carries a charset (-1 stays where none is written);
// the message's comes from its code page. An OLE object is listed with a
// type of its own.
TEST(SubfileInfo, TreeWithAndWithoutRootEntry) {
    for (uint32_t flags : {0u, 0x40000u}) {
        OpenedStream s(listedStream(), flags);
        ASSERT_EQ(s.status, 0);
        const int32_t o = flags != 0 ? 1 : 0;
        const std::string p = flags != 0 ? "root/" : "";
        std::vector<Listed> tree = {
            {0, 0, 10, o - 1, p + "Hello.mail", {1 + o, 2 + o}, 6, kSubmitTime},
            {0, 1, 3, o, p + "plain.txt", {}, -1, kModified},
            {0, 2, 24, o, p + "zd2.tmp", {}, -1, kCreated},
        };
        if (o == 1) tree.insert(tree.begin(), Listed{0, 3, 0, -1, "root/", {1}, -1, 0, 0});
        for (size_t i = 0; i < tree.size(); ++i) EXPECT_EQ(list(s, static_cast<int32_t>(i)), tree[i]) << i;
        EXPECT_EQ(list(s, 3 + o).status, 34);
        EXPECT_EQ(list(s, -1).status, 34);
        EXPECT_EQ(s.results.liveBlocks(), 0u);
    }
}

// Bad requests, and a message without properties: it can't be named, the
// rest of its listing stands.
TEST(SubfileInfo, BadArgumentsAndUnnamableMessage) {
    OpenedStream s(listedStream());
    SubfileInfo info{};
    EXPECT_EQ(tnefGetSubfileInfo(nullptr, 0, &info, &s.memory), 34);
    EXPECT_EQ(tnefGetSubfileInfo(s.container, 0, nullptr, &s.memory), 34);
    EXPECT_EQ(tnefGetSubfileInfo(s.container, 0, &info, nullptr), 34);  // any unusable memory: container_test
    s.container->objectCount += 1;  // a list that runs out before the count
    EXPECT_EQ(tnefGetSubfileInfo(s.container, 3, &info, &s.memory), 20);
    s.container->objectCount -= 1;
    OpenedStream unnamable(buildMessage({.body = "b", .attachments = {{}}}));
    EXPECT_EQ(list(unnamable, 0), (Listed{6, 0, 1, -1, "", {1}, 0, 0}));
}

// The name `stream` lists for its subfile `index`.
std::string nameAt(const Bytes& stream, int32_t index) {
    OpenedStream s(stream);
    Listed listed = list(s, index);
    EXPECT_EQ(listed.status, 0);
    return listed.name;
}

TEST(SubfileNaming, Messages) {
    struct Case { std::vector<Prop> props; const char* name; };
    const Case cases[] = {
        {{Prop::string8(kTagSubject8, "Re: budget")}, "Re budge.mail"},
        {{Prop::string8(kTagMessageClass8, "IPM.Task")}, "zdmsg.task"},
        {{Prop::string8(kTagSubject8, "    ")}, " .mail"},
        {{Prop::string8(kTagSubject8, "  lead")}, "lead.mail"},
        {{Prop::string8(kTagSubject8, "a\tb\x01"
                                      "c")}, "abc.mail"},
        {{Prop::unicode(kTagSubject16, "a\tb")}, "a\tb.mail"},
        {{Prop::unicode(kTagSubject16, "a\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9")},
         "a\xC3\xA9\xC3\xA9\xC3\xA9\xC3.mail"},
        {{Prop::unicode(kTagSubject16, "Sub16"), Prop::string8(kTagSubject8, "Sub8")}, "Sub16.mail"},
        {{Prop::string8(kTagSubject8, "unterminated", false)}, "untermin.mail"},
        {{Prop::string8(kTagMessageClass8, "IPC.Contact")}, "zdmsg.cont"},
        {{Prop::string8(kTagMessageClass8, "IPM.StickyNote.X")}, "zdmsg.note"},
        {{Prop::string8(kTagMessageClass8, "IPM.Tas")}, "zdmsg.mail"},  // any class without a row of its own
        {{Prop::unicode(kTagMessageClass16, "IPM.Task"), Prop::string8(kTagMessageClass8, "IPM.Post")},
         "zdmsg.task"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(nameAt(buildMessage({.props = c.props}), 0), c.name);
    }
}

TEST(SubfileNaming, Attachments) {
    Prop embedded = Prop::int32(kTagAttachMethod, 5);
    Prop ole = Prop::int32(kTagAttachMethod, 6);
    struct Case { AttachmentLayout attachment; const char* name; };
    const Case cases[] = {
        {{.title = "Quarterly report", .props = {embedded}}, "Quarterl_zd1"},
        {{.title = "???", .props = {embedded}}, "zd1"},
        {{.title = "Mail",
          .props = {embedded, Prop::string8(kTagAttachLongFilename8, "long.eml")}},
         "Mail_zd1"},
        {{.title = "a:b/c\x01.txt"}, "a b c .txt"},
        {{.title = "t.txt", .props = {Prop::string8(kTagAttachLongFilename8, "x*y?.txt")}},
         "x*y?.txt"},
        // Long file names lose their path, unless they belong to an OLE object.
        {{.props = {Prop::string8(kTagAttachLongFilename8, "C:\\dir/file.txt")}}, "file.txt"},
        {{.props = {ole, Prop::string8(kTagAttachLongFilename8, "C:\\dir\\o.doc")}},
         "C:\\dir\\o.doc"},
        {{.props = {Prop::unicode(kTagAttachLongFilename16, "d\\ir/\xC3\xBCn.txt")}},
         "\xC3\xBCn.txt"},
        {{.title = "title", .props = {Prop::string8(kTagAttachLongFilename8, "dir/")}}, ""},
        {{.title = "title", .props = {Prop::string8(kTagAttachLongFilename8, "dir/", false)}},
         "dir/"},
    };
    for (const Case& c : cases) {
        Bytes stream = buildMessage({.attachments = {c.attachment}});
        EXPECT_EQ(nameAt(stream, 1), c.name);
    }
}

}  // namespace
}  // namespace tneftest
