// What an input is, told from its first bytes.
#include <gtest/gtest.h>

#include "mail/input_kind.h"

namespace tneftest {
namespace {

using tnefmail::InputKind;

TEST(InputKind, TheHeadTellsWhatAnInputHolds) {
    struct Case {
        std::string head;
        InputKind kind;
    } cases[] = {
        {std::string("\x78\x9F\x3E\x22\x01\x00", 6), InputKind::kTnef},
        {"From ann@example.com Mon Jan  1 00:00:00 2024\nSubject: x\n", InputKind::kMbox},
        {"Received: from a\n\tby b\nSubject: x\r\n\r\nbody", InputKind::kMessage},
        {"Subject: cut by the head's si", InputKind::kMessage},
        {"X-Only: one field, then the head ends\n", InputKind::kMessage},
        {" continuation first: x\n\n", InputKind::kOther},
        {"From: no colon here\nnot a header\n\n", InputKind::kOther},
        {"Subject x\n\n", InputKind::kOther},
        {"\n\nbody only", InputKind::kOther},
        {"", InputKind::kOther},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(tnefmail::detectKindOfHead(c.head), c.kind) << c.head;
    }
}

}  // namespace
}  // namespace tneftest
