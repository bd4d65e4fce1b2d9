// Values shown as one line of text: times in ISO 8601 UTC, whatever the day of
// the year, and binaries as hex, cut after 32 bytes.
#include "client/element_values.h"

#include <gtest/gtest.h>

#include "host/posix_host.h"
#include "tests/support/tnef_writer.h"

namespace tneftest {
namespace {

using tnefclient::Element;

Element timeElement(uint64_t ticks) {
    Bytes bytes;
    putLe64(bytes, ticks);
    return Element{true, 0, kElementTime, std::nullopt, 0, bytes};
}

TEST(ElementValues, TimesAndBinariesAsText) {
    struct Case {
        Element element;
        std::string text;
    } cases[] = {
        {timeElement(10000000), "1601-01-01T00:00:01Z"},
        {timeElement(125963423990000000), "2000-02-29T23:59:59Z"},
        {timeElement(125963424000000000), "2000-03-01T00:00:00Z"},  // the first day of the year it counts from
        {{true, 0, kElementBinary, std::nullopt, 0, {0x0F, 0xA5, 0x00}}, "0fa500"},
        {{true, 0, kElementBinary, std::nullopt, 0, Bytes(33, 0x11)}, std::string(64, '1') + "... (33 bytes)"},
    };
    tnefhost::PosixHost host;
    for (const Case& c : cases) EXPECT_EQ(tnefclient::elementText(host.context(), c.element, 0), c.text);
}

}  // namespace
}  // namespace tneftest
