// The sender text of a message's summary (refused allocations of open are
// swept in tests/sweeps; the other six elements, as the metadata answers
// them, are checked in tests/catalogue/metadata_test.cpp).
#include <gtest/gtest.h>

#include "tests/support/reader_fixture.h"

using namespace tneftest;

namespace {

Bytes message(const std::vector<Prop>& props) { return buildMessage({.props = props}); }

// "null" without element, "-" for an empty placeholder, else the text.
std::string text(const MetaElement* e) {
    if (e == nullptr) return "null";
    if (e->hasValue == 0) return e->value == 0 && e->name == nullptr ? "-" : "valueless";
    return std::string(reinterpret_cast<const char*>(e->value), static_cast<size_t>(e->size));
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
        {{sndMail}, "<s@x>"},
        {{Prop::string8(kTagSenderName8, "", false), Prop::string8(kTagSenderEmail8, "ab")}, "\"\" <ab>"},
        {{Prop::string8(kTagSubject8, "Hi")}, "null"},
        {{Prop::unicode(kTagSentRepresentingName16, "Al"),
          Prop::unicode(kTagSentRepresentingEmail16, "a@b")}, wide("\"Al\" <a@b>"), true},
        // An 8-bit text beside a 16-bit one is widened; all-8-bit sender
        // texts under a flag raised by another row are read as pairs.
        {{snd, Prop::unicode(kTagSentRepresentingEmail16, "b@x")}, wide("\"Snd\" <b@x>"), true},
        {{Prop::unicode(kTagSubject16, "S"), snd, sndMail},
         wide("\"") + std::string("Snd\0", 4) + wide("\" <") + std::string("s@x\0", 4) + wide(">"), true},
        {{snd, sndMail, unreadable}, "<s@x>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        OpenedStream s(message(c.props));
        const MetaElement* from = s.container->summary[0];
        EXPECT_EQ(text(from), c.expected);
        EXPECT_EQ(objectAt(s.container, 0)->charset, c.wide ? kCharsetUnicode : kCharsetNone);
        if (from != nullptr) {
            EXPECT_STREQ(from->name, "From");
            EXPECT_EQ(from->type, c.wide ? kElementText16 : kElementText8);
            EXPECT_EQ(reinterpret_cast<const uint8_t*>(from->value)[from->size], 0);
        }
        EXPECT_EQ(s.close(), "");
    }
}

}  // namespace
