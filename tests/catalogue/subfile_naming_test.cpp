// Subfile names: the rules in their order, cleaning and stems. A message
// that cannot be named is listed with status 6 in subfile_info_test.
#include <gtest/gtest.h>

#include "catalogue/subfile_naming.h"
#include "reader/operations.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

// The name the module gives the object at `place` of `stream`.
std::string nameAt(const Bytes& stream, int32_t place) {
    OpenedStream s(stream);
    TnefObject* object = objectAt(s.container, place);
    EXPECT_EQ(tnefMakeSubfileName(s.container, object, place), 0);
    return object->name != nullptr ? std::string(object->name) : std::string("<none>");
}

Bytes message(std::vector<Prop> props) {
    return buildMessage({.props = std::move(props)});
}

TEST(SubfileNaming, Messages) {
    struct Case { std::vector<Prop> props; const char* name; };
    const Case cases[] = {
        {{Prop::string8(kTagSubject8, "Re: budget")}, "Re budge.mail"},
        {{Prop::int32(kTagImportance, 1)}, "zdmsg.mail"},
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
        {{Prop::string8(kTagMessageClass8, "IPM.Schedule.Meeting.Request")}, "zdmsg.mail"},
        {{Prop::string8(kTagMessageClass8, "IPC.Contact")}, "zdmsg.cont"},
        {{Prop::string8(kTagMessageClass8, "IPM.StickyNote.X")}, "zdmsg.note"},
        {{Prop::string8(kTagMessageClass8, "IPM.Tas")}, "zdmsg.mail"},
        {{Prop::unicode(kTagMessageClass16, "IPM.Task"), Prop::string8(kTagMessageClass8, "IPM.Post")},
         "zdmsg.task"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(nameAt(message(c.props), 0), c.name);
    }
}

TEST(SubfileNaming, Attachments) {
    Prop embedded = Prop::int32(kTagAttachMethod, 5);
    Prop ole = Prop::int32(kTagAttachMethod, 6);
    struct Case { AttachmentLayout attachment; const char* name; };
    const Case cases[] = {
        {{}, "zd1.tmp"},
        {{.title = "Quarterly report", .props = {embedded}}, "Quarterl_zd1"},
        {{.title = "???", .props = {embedded}}, "zd1"},
        {{.title = "   ", .props = {embedded}}, " _zd1"},
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

// The long file name is a copy the host makes (as are the other names).
TEST(SubfileNaming, RefusedCopyLeavesTheObjectUnnamed) {
    Prop longName = Prop::string8(kTagAttachLongFilename8, "a.txt", false);
    OpenedStream s(buildMessage({.attachments = {{.props = {longName}}}}));
    TnefObject* object = objectAt(s.container, 1);
    HostContext* host = s.host.context();
    auto duplicate = host->hostDuplicateString;
    host->hostDuplicateString = [](HostContext*, const char*) -> char* { return nullptr; };
    EXPECT_EQ(tnefMakeSubfileName(s.container, object, 1), 6);
    EXPECT_EQ(object->name, nullptr);
    host->hostDuplicateString = duplicate;
    EXPECT_EQ(tnefMakeSubfileName(s.container, object, 1), 0) << "the next call tries again";
    EXPECT_STREQ(object->name, "a.txt");
    EXPECT_EQ(s.close(), "");
}

}  // namespace
}  // namespace tneftest
