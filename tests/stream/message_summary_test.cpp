// The texts of a message's summary: the sender, and the To, Cc and Bcc lists
// built from the recipient table (refused allocations of open and failed
// reads of the table are swept in tests/sweeps; the other elements, as the
// metadata answers them, are checked in tests/catalogue/metadata_test.cpp).
#include <gtest/gtest.h>

#include "stream/property_access.h"
#include "stream/recipient_table.h"
#include "tests/support/reader_fixture.h"

using namespace tneftest;

namespace {

using Rows = std::vector<std::vector<Prop>>;

Bytes withTable(const Bytes& table) {
    return TnefWriter().version().record(kLevelMessage, 0x9004, table).bytes();
}
Prop name8(const std::string& s) { return Prop::string8(kTagDisplayName8, s); }
Prop name16(const std::string& s) { return Prop::unicode(kTagDisplayName16, s); }
Prop mail8(const std::string& s) { return Prop::string8(kTagEmailAddress8, s); }
Prop mail16(const std::string& s) { return Prop::unicode(kTagEmailAddress16, s); }
Prop smtp8(const std::string& s) { return Prop::string8(kTagSmtpAddress8, s); }
Prop kind(int32_t t) { return Prop::int32(kTagRecipientType, t); }

// Summary slot `slot` as text: "null" without element, "-" for an empty
// placeholder, else its value, whose name, form (16-bit when the message is
// marked so) and terminator are checked.
std::string slotText(const OpenedStream& s, int32_t slot) {
    const MetaElement* e = s.container->summary[slot];
    if (e == nullptr) return "null";
    if (e->hasValue == 0) return e->value == 0 && e->name == nullptr ? "-" : "valueless";
    const char* const names[] = {"From", "Sent", "To", "Cc", "Bcc"};
    const bool wide = objectAt(s.container, 0)->charset == kCharsetUnicode;
    EXPECT_STREQ(e->name, names[slot]);
    EXPECT_EQ(e->type, wide ? kElementText16 : kElementText8) << names[slot];
    const auto* text = reinterpret_cast<const char*>(e->value);
    EXPECT_TRUE(text[e->size] == 0 && (!wide || text[e->size + 1] == 0)) << names[slot];
    return std::string(text, static_cast<size_t>(e->size));
}

// Slots 2 to 4 as "To|Cc|Bcc".
std::string lists(const OpenedStream& s) {
    return slotText(s, 2) + "|" + slotText(s, 3) + "|" + slotText(s, 4);
}

TEST(MessageSummary, SenderText) {
    const Prop snd = Prop::string8(kTagSenderName8, "Snd"),
               sndMail = Prop::string8(kTagSenderEmail8, "s@x"),
               rep = Prop::string8(kTagSentRepresentingName8, "Rep"),
               repMail = Prop::string8(kTagSentRepresentingEmail8, "r@x");
    Prop unreadable = rep;
    unreadable.lengthOverride = 1000;  // runs past the end of the stream
    const struct {
        std::vector<Prop> props;
        std::string expected;
        bool wide = false;
    } cases[] = {
        {{snd, rep, sndMail, repMail}, "\"Rep\" <r@x>"},
        {{snd, repMail}, "\"Snd\" <r@x>"},
        {{rep, Prop::string8(kTagSentRepresentingName8, "B")}, "\"B\""},
        {{Prop::string8(kTagSenderName8, "", false), Prop::string8(kTagSenderEmail8, "ab")}, "\"\" <ab>"},
        // An 8-bit text beside a 16-bit one is widened; all-8-bit sender
        // texts under a flag raised by another row are read as pairs.
        {{snd, Prop::unicode(kTagSentRepresentingEmail16, "b@x")}, wide("\"Snd\" <b@x>"), true},
        {{Prop::unicode(kTagSubject16, "S"), snd, sndMail},
         wide("\"") + std::string("Snd\0", 4) + wide("\" <") + std::string("s@x\0", 4) + wide(">"), true},
        {{snd, sndMail, unreadable}, "<s@x>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        OpenedStream s(buildMessage({.props = c.props}));
        EXPECT_EQ(slotText(s, 0), c.expected);
        EXPECT_EQ(objectAt(s.container, 0)->charset, c.wide ? kCharsetUnicode : kCharsetNone);
        EXPECT_EQ(s.close(), "");
    }
}

// (The layout of one entry, name and address, is the sender's: MessageSummary.SenderText;
// an address without at sign given up for one with it, and mixed tables whose 8-bit rows
// and texts are widened: RecipientTable.DamagedTablesEndCleanly.)
TEST(RecipientTable, AssemblesListsInBothForms) {
    Prop tooMany = Prop::raw(0x80011003, {Bytes(4, 0)});
    tooMany.valueCount = 65536;
    const std::string k(1000, 'k');  // three rows of it outgrow the list's first buffer
    const struct {
        Rows rows;
        std::string expected;
        bool wide = false;
        std::optional<int32_t> rowCount = std::nullopt;
    } cases[] = {
        {{{name8("Ann"), mail8("ann@x")}}, "\"Ann\" <ann@x>|-|-"},
        {{{kind(1)}, {name8("B")}}, ", \"B\"|-|-"},  // an empty 8-bit list, then a row
        {{{smtp8("b@x"), mail8("a@x"), smtp8("c@x")}}, "<b@x>|-|-"},  // stream order decides
        {Rows(3, {name8(k)}), "\"" + k + "\", \"" + k + "\", \"" + k + "\"|-|-"},
        {{{name8("A"), smtp8("ann")}}, "\"A\"|-|-"},
        {{{Prop::raw(kTagSmtpAddress8, {bytesOf(std::string("a\0@", 3))})}}, "|-|-"},
        {{{kind(2), name8("C")}, {kind(3), name8("B")}, {kind(1), name8("T1")},
          {kind(4), name8("T4")}, {kind(INT32_MIN | 2), name8("T5")}, {name8("T0")},
          {kind(2), kind(3), name8("B2")}},
         "\"T1\", \"T4\", \"T5\", \"T0\"|\"C\"|\"B\", \"B2\""},
        {{{kind(2), name8("C")}}, "|\"C\"|-", false, 3},  // rows beyond the data
        {{{kind(2), name8("C")}}, "null|null|null", false, 0x7FFFFFFF},  // its spare room is refused
        {{{name8("A")}, {tooMany}}, "null|null|null"},  // a property the table cannot hold ends it
        {{{name16("Al"), mail16("a@b")}, {name16("B")}}, wide("\"Al\" <a@b>, \"B\"") + "|-|-", true},
        // 16-bit at sign: 40 as a high byte or behind 00 00 doesn't count; each value of a
        // multi-valued address is a candidate of its own.
        {{{Prop::raw(kTagEmailAddress16, {Bytes{0, 0x40, 0, 0}}),
           Prop::raw(kTagSmtpAddress16, {Bytes{0x61, 0x40, 0, 0}}),
           Prop::raw(0x403E001F, {Bytes{0, 0, 0x40, 0}}),
           Prop::raw(0x403E101F, {Bytes{0x62, 0}, Bytes{0x40, 0, 0x63}})}},
         wide("<@>") + "|-|-", true},
        {{{name16("A")}, {kind(2)}}, wide("\"A\"") + "|-|-", true},
        {{{kind(1)}, {name16("A")}}, wide(", \"A\"") + "|-|-", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        OpenedStream s(withTable(recipientTable(c.rows, c.rowCount)));
        EXPECT_EQ(lists(s), c.expected);
        EXPECT_EQ(objectAt(s.container, 0)->charset, c.wide ? kCharsetUnicode : kCharsetNone);
        EXPECT_EQ(s.close(), "");
    }
    EXPECT_EQ(lists(OpenedStream(buildMessage(MessageLayout{}))), "null|null|null");
    // No room for a row count: as for any count up to 0.
    EXPECT_EQ(lists(OpenedStream(withTable(Bytes{1, 0}))), "-|-|-");
}

TEST(RecipientTable, DamagedTablesEndCleanly) {
    const Bytes table = recipientTable(
        {{kind(2), Prop::namedString(Prop::string8(0x8004001E, "z@z"), bytesOf("abcde")),
          name8("N1"), Prop::string8(0x3A00001E, "x@y"), mail8("x"), smtp8("a@b")},
         {Prop::named(Prop::raw(0x80031003, {Bytes(4, 1), Bytes(4, 2)}), 3),
          Prop::raw(0x00010001, {}), Prop::int64(0x30070040, 9), name16("W"), mail8("w@x")},
         {kind(3), Prop::raw(0x00480048, {Bytes(16, 1)}), Prop::string8(0x403E001E, "b@c")}});
    const Bytes whole = withTable(table);
    EXPECT_EQ(lists(OpenedStream(whole)),
              wide("\"W\" <w@x>") + "|" + wide("\"N1\" <a@b>") + "|" + wide("<b@c>"));
    // The record holds only the first bytes of the table (a stream that ends
    // inside the table: Container.OpenSweepOverEveryTruncation).
    for (size_t cut = 0; cut <= table.size(); ++cut) {
        OpenedStream s(withTable(Bytes(table.begin(), table.begin() + cut)));
        lists(s);  // reads every byte of each list
        EXPECT_EQ(s.close(), "") << cut;
    }
    // Built again with the trace lines on: they change nothing.
    OpenedStream traced(whole);
    HostAllocator* allocator = &traced.host.context()->allocator;
    for (int i = 2; i <= 4; ++i) {
        tnefFreeElement(allocator, traced.container->summary[i]);
        traced.container->summary[i] = nullptr;
    }
    traced.container->traceEnabled = 1;
    EXPECT_EQ(tnefBuildRecipientLists(traced.container, allocator, objectAt(traced.container, 0)), kTnefOk);
    EXPECT_EQ(lists(traced), lists(OpenedStream(whole)));
    EXPECT_EQ(traced.close(), "");
}

}  // namespace
