// The address of a HYPERLINK field, and which addresses a link of our HTML
// may have.
#include "rtf/hyperlink.h"

#include <gtest/gtest.h>

namespace {

TEST(Hyperlink, TargetOfTheInstruction) {
    struct Case { const char* instruction; const char* target; };
    const Case cases[] = {
        {" HYPERLINK \"http://x.org/a b\" ", "http://x.org/a b"},
        {"hyperlink http://x.org/", "http://x.org/"},
        {"HYPERLINK \\l \"top\"", "#top"},
        {"HYPERLINK \"page.htm\" \\l \"part\" \\o \"tip\" \\t \"_blank\" \\m \\n", "page.htm#part"},
        {"HYPERLINK \\o \"tip\" mailto:a@b.c", "mailto:a@b.c"},
        {"HYPERLINK \"\\l\"", "\\l"},  // quoted, a switch is an address
        {"HYPERLINK \"unclosed", "unclosed"},
        {"HYPERLINK", ""},
        {"PAGE \\* MERGEFORMAT", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(tnefrtf::hyperlinkTarget(c.instruction), c.target) << c.instruction;
}

TEST(Hyperlink, SafeTargets) {
    struct Case { const char* target; bool safe; };
    const Case cases[] = {
        {"HTTPS://x.org/", true},       {"mailto:a@b.c", true}, {"#top", true}, {"dir/page.htm?a=b:c", true},
        {"javascript:alert(1)", false}, {"java\tscript:x", false}, {" http://x", false},
        {"http://x\n", false},          {"", false},
    };
    for (const Case& c : cases) EXPECT_EQ(tnefrtf::isSafeLinkTarget(c.target), c.safe) << c.target;
}

}  // namespace
