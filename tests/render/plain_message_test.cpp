// The message in text form, byte for byte: whole renderings, failing input
// among them. Refused allocations of a rendering are swept in tests/sweeps.
#include <gtest/gtest.h>

#include <functional>

#include "render/plain_message.h"
#include "tests/render/render_support.h"

namespace tneftest {
namespace {

using namespace render;

const std::string kSentLine = "Sent: Mon Jan 02 03:04:05 2006\r\n";

struct Rendered { int32_t status; std::string bytes; int32_t converted; CharsetId outputCharset; };

// Renders with the per-extract settings the dispatcher would make, and
// checks that the host's current charset is left as it was.
Rendered renderPlain(OpenedStream& s, CharsetId wanted, bool omitHeader = false) {
    tnefhost::MemoryIo output;
    TnefContainer* c = s.container;
    c->outputCharset = wanted;
    c->omitSummaryHeader = omitHeader ? 1 : 0;
    c->charsetConverted = 0;
    const CharsetId before = s.host.context()->currentCharset;
    int32_t status = tnefWritePlainMessage(c, objectAt(c, 0), output.io());
    EXPECT_EQ(s.host.context()->currentCharset, before);
    return {status, output.text(), c->charsetConverted, c->outputCharset};
}

// `again`: what a second rendering gives, when it differs.
struct WholeCase {
    const char* name;
    MessageLayout plan;
    std::function<void(OpenedStream&)> adjust;
    CharsetId wanted;
    bool omitHeader;
    std::string expected;
    int32_t converted;
    std::optional<std::string> again = std::nullopt;
    int32_t status = 0;
};

TEST(PlainMessage, WholeOutputs) {
    MessageLayout typical{1252, std::nullopt, "Hello\r\nCaf\xE9",
                        {Prop::string8(kTagSentRepresentingName8, "Alice"),
                         Prop::string8(kTagSentRepresentingEmail8, "alice@example.com"),
                         Prop::time(kTagClientSubmitTime, kSent2006),
                         Prop::string8(kTagSubject8, "Caf\xE9 plan"), Prop::int32(kTagImportance, 2)},
                        std::nullopt,
                        {{std::nullopt, Bytes{1},
                          {Prop::string8(kTagAttachLongFilename8, "C:\\docs\\report.pdf")}},
                         {"notes.txt", Bytes{2}, {}},
                         {std::nullopt, Bytes{3}, {}}}};
    MessageLayout wide16{std::nullopt, std::nullopt, "Hello",
                       {Prop::unicode(kTagSentRepresentingName16, "Alice"),
                        Prop::unicode(kTagSentRepresentingEmail16, "alice@example.com"),
                        Prop::time(kTagClientSubmitTime, kSent2006),
                        Prop::unicode(kTagSubject16, "Caf\xC3\xA9")},
                       std::nullopt,
                       {{std::nullopt, Bytes{1},
                         {Prop::unicode(kTagAttachLongFilename16, "x/r\xC3\xA9sum\xC3\xA9.doc")}}}};
    MessageLayout plain{std::nullopt, std::nullopt, "Body", {Prop::time(kTagClientSubmitTime, kSent2006)}};
    MessageLayout cp1252{1252, std::nullopt, "Caf\xE9",
                       {Prop::string8(kTagSubject8, "Caf\xE9"), Prop::int32(kTagImportance, 3)}};
    auto to8 = [](OpenedStream& s) { setSlot(s, 2, kElementText8, std::string("Bob\0", 4), "To"); };
    auto charset = [](CharsetId id) {
        return [id](OpenedStream& s) { objectAt(s.container, 0)->charset = id; };
    };
    MessageLayout names{1252, std::nullopt, std::nullopt, {Prop::int32(kTagImportance, 0)}, std::nullopt,
                      {{"t.txt", Bytes{1}, {Prop::raw(kTagAttachLongFilename16, {Bytes(4, 0)})}},
                       {"u.txt", Bytes{2}, {}},
                       {std::nullopt, Bytes{3}, {Prop::raw(kTagAttachLongFilename8, {Bytes(1, 0)})}}}};

    const std::vector<WholeCase> cases = {
        {"8-bit, nothing wanted", typical, to8, 0, false,
         "From: \"Alice\" <alice@example.com>\r\n" + kSentLine +
             "To: Bob\r\nSubject: Caf\xE9 plan\r\nImportance: High\r\n"
             "Attachments: report.pdf; notes.txt; zd3.tmp\r\n\r\nHello\r\nCaf\xE9",
         0},
        {"16-bit wanted from 1252", typical, to8, 51, false,
         wide("From: \"Alice\" <alice@example.com>\r\n" + kSentLine +
              "To: Bob\r\nSubject: Caf\xC3\xA9 plan\r\nImportance: High\r\nAttachments: report.pdf") +
             "; notes.txt; zd3.tmp" + wide("\r\n\r\nHello\r\nCaf\xC3\xA9"),
         1},
        {"16-bit fields narrowed to the message charset", wide16, charset(7), 0, false,
         "From: \"Alice\" <alice@example.com>\r\n" + kSentLine +
             "Subject: Caf\xE9\r\nImportance: Normal\r\nAttachments: r\xE9sum\xE9.doc\r\n\r\nHello",
         1},
        {"16-bit field of zero units only", plain,
         [](OpenedStream& s) { setSlot(s, 0, kElementText16, std::string(4, '\0'), "From"); }, 0, false,
         wide(kSentLine + "Importance: Normal\r\n\r\n") + "\r\n\r\nBody", 1,
         // Stripped to size 0 it is no field any more and marks nothing.
         kSentLine + "Importance: Normal\r\n\r\n\r\n\r\nBody"},
        {"element of the wrong name", plain,
         [](OpenedStream& s) { setSlot(s, 3, kElementText8, "x", "To"); }, 0, false,
         kSentLine + "Importance: Normal\r\n\r\n\r\n\r\nBody", 0},
        {"wanted equals message", cp1252, nullptr, 7, false,
         "Subject: Caf\xE9\r\nImportance: Normal\r\n\r\n\r\n\r\nCaf\xE9", 0},
        {"header omitted", cp1252, nullptr, 51, true, wide("Caf\xC3\xA9"), 1},
        // Input failing at the body: a failed seek is an error.
        {"body not found", cp1252, [](OpenedStream& s) { s.input.failOperation(tnefhost::IoOp::kSeek, 1); }, 0,
         false, "Subject: Caf\xE9\r\nImportance: Normal\r\n\r\n\r\n\r\n", 0,
         "Subject: Caf\xE9\r\nImportance: Normal\r\n\r\n\r\n\r\nCaf\xE9", 4},
        {"names of zero units and of size 0", names, nullptr, 0, false,
         "Importance: Low\r\nAttachments: u.txt; \r\n\r\n", 0},
    };
    for (const WholeCase& c : cases) {
        SCOPED_TRACE(c.name);
        OpenedStream s(buildMessage(c.plan));
        ASSERT_EQ(s.status, 0);
        if (c.adjust) c.adjust(s);
        Rendered first = renderPlain(s, c.wanted, c.omitHeader);
        EXPECT_EQ(first.status, c.status);
        EXPECT_EQ(first.bytes, c.expected);
        EXPECT_EQ(first.converted, c.converted);
        EXPECT_EQ(first.outputCharset, c.wanted);
        // Trailing zeros stripped once stay stripped.
        EXPECT_EQ(renderPlain(s, c.wanted, c.omitHeader).bytes, c.again.value_or(c.expected));
        EXPECT_EQ(s.close(), "");
    }
}

}  // namespace
}  // namespace tneftest
