// The RTF summary header, whole and byte for byte.
#include <gtest/gtest.h>

#include <functional>

#include "render/rtf_summary_field.h"
#include "tests/render/summary_header_support.h"

namespace tneftest {
namespace {

using namespace summaryheader;

std::string head(int codePage, int fontCharset) {
    return "{\\rtf1\\ansi\\ansicpg" + std::to_string(codePage) + "\\deff0 {\\fonttbl{\\f0\\fcharset" +
           std::to_string(fontCharset) + " Arial Unicode MS;}}\\f0\\fs20";
}
const std::string kHead1252 = head(1252, 0);
const std::string kEnd = "\\par \\par ";

Adjust charset(CharsetId id, bool shiftJisDefault = false) {
    return [=](OpenedStream& s) {
        objectAt(s.container, 0)->charset = id;
        if (!shiftJisDefault) return;
        s.host.context()->hostSetDefaultCharset = [](HostContext* host, int32_t) {
            host->currentCharset = kCharsetShiftJis;
        };
        s.host.context()->currentCharset = 9;  // must be back after every call
    };
}

TEST(RtfSummary, WholeHeaders) {
    MessageLayout typical{1252, std::nullopt, std::nullopt,
                        {Prop::string8(kTagSentRepresentingName8, "Al"), Prop::string8(kTagSentRepresentingEmail8, "a@x"),
                         Prop::time(kTagClientSubmitTime, kSent2006), Prop::int32(kTagImportance, 2)},
                        std::nullopt,
                        {{"{x}.txt", Bytes{1}, {}},
                         {std::nullopt, Bytes{2}, {Prop::string8(kTagAttachLongFilename8, "a{b}.txt")}},
                         {std::nullopt, Bytes{3}, {Prop::unicode(kTagAttachLongFilename16, "\xE6\x97\xA5")}},
                         {std::nullopt, Bytes{4}, {Prop::unicode(kTagAttachLongFilename16, "\xE4\xB8\xAD")}},
                         {std::nullopt, Bytes{5}, {}},
                         {"t.txt", Bytes{6}, {Prop::raw(kTagAttachLongFilename16, {Bytes(2, 0)})}}}};
    MessageLayout normal{std::nullopt, std::nullopt, std::nullopt, {Prop::int32(kTagImportance, 1)}};
    MessageLayout bare{};
    // "{Café \ € 中?中", U+FFFD, a lone high surrogate, "}".
    const std::string singleByte =
        wide("{Caf\xC3\xA9 \\ \xE2\x82\xAC \xE4\xB8\xAD?\xE4\xB8\xAD\xEF\xBF\xBD") + "\x3D\xD8}" + '\0';
    // 5000 units with escapes run over the flush mark with nothing lost; the
    // count word stays with the first \u of the line.
    const std::string pieces[] = {"a", "}", "\xE4\xB8\xAD"}, encoded[] = {"a", "\\}", "\\u20013 ? "};
    std::string longText, longLine = "\\b Subject: \\b0 ";
    for (int i = 0; i < 5000; ++i) {
        longText += wide(pieces[i % 3]);
        longLine += (i == 2 ? "\\uc2" : "") + encoded[i % 3];
    }
    const std::vector<HeaderCase> cases = {
        {"8-bit sender, names of every form", typical, nullptr,
         kHead1252 + "\\b From: \\b0 \"Al\" <a@x>\\par \\b Sent: \\b0 Mon Jan 02 03:04:05 2006\\par "
                     "\\b Importance: \\b0 High\\par"
                     "\\b Attachments: \\b0 {x}.txt; a\\{b\\}.txt; \\uc2\\u26085 ? ; \\u20013 ? ; zd5.tmp" + kEnd},
        {"16-bit text in a single-byte charset", bare,
         [&](OpenedStream& s) {
             charset(7)(s);
             setSlot(s, 2, kElementText16, wide("\xE4\xB8\xAD"), "To");
             setSlot(s, 5, kElementText16, singleByte, "Subject");
         },
         kHead1252 + "\\b To: \\b0 \\uc2\\u20013 ? \\par \\b Subject: \\b0 \\{Caf\xE9 \\\\ \x80 \\uc2\\u20013 ? "
                     "\\u63 ? \\u20013 ? \\u-3 ? \\u-10179 ? \\}\\par " + kEnd},
        {"16-bit and 8-bit text in a double-byte charset", bare,
         [](OpenedStream& s) {
             charset(1)(s);
             setSlot(s, 2, kElementText8, "A\x93\xFA\\{}\x93", "To");  // ends in a lead byte
             setSlot(s, 5, kElementText16, wide("\xE6\x97\xA5\xE6\x9C\xAC\xEF\xBC\x81\xEF\xBD\xB1{"), "Subject");
         },
         head(932, 128) + "\\b To: \\b0 A\\'93\\'fa\\\\\\{\\}\x93\\par "
                          "\\b Subject: \\b0 \\uc2\\u26085\\'93\\'fa\\u26412\\'96\\'7b\\u-255\\'81\\'49\xB1\\{\\par " + kEnd},
        {"empty, misnamed and odd values", normal,
         [](OpenedStream& s) {
             setSlot(s, 0, kElementText16, std::string(4, '\0'), "From");
             setSlot(s, 2, kElementText8, "x", "Cc");
             setSlot(s, 3, kElementText8, std::string(2, '\0'), "Cc");
             setSlot(s, 4, kElementText16, std::string("A\0B", 3), "Bcc");
         },
         kHead1252 + "\\b Cc: \\b0 \\par \\b Bcc: \\b0 A\\par \\b Importance: \\b0 Normal\\par\\par" + kEnd},
        {"a long value", bare,
         [&](OpenedStream& s) { charset(7)(s); setSlot(s, 5, kElementText16, longText, "Subject"); },
         kHead1252 + longLine + "\\par " + kEnd},
        {"charset 0 follows the host's default", bare, charset(0, true), head(932, 128) + kEnd},
        {"charset 51 follows the host's default", bare, charset(51, true), head(932, 128) + kEnd},
        {"charset 14", bare, charset(14), kHead1252 + kEnd},
        {"charset 25", bare, charset(25), kHead1252 + kEnd},
        {"charset 53", bare, charset(53), kHead1252 + kEnd},
    };
    checkHeaders(cases, tnefWriteRtfSummaryField);
}

}  // namespace
}  // namespace tneftest
