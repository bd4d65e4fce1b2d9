// Which names find which stream: control bytes, ASCII case, other scripts,
// storages and malformed queries.
#include <gtest/gtest.h>

#include "tests/oleio/storage_fixture.h"

namespace tneftest {
namespace {

TEST(OleNames, LookupTable) {
    const std::string longest(31, 'n');
    std::vector<CfbEntryLayout> specs = {
        {"\x01Ole10Native", bytesOf("native")}, {"\x01" "CompObj", bytesOf("compobj")},
        {"\x06Primary", bytesOf("primary")},    {"Workbook", bytesOf("workbook")},
        {"CONTENTS", bytesOf("contents")},      {"Größe", bytesOf("size")},
        {"\xF0\x9F\x98\x80x", bytesOf("emoji")}, {longest, bytesOf("long")},
        CfbEntryLayout::emptyStorage("Package"),
    };
    struct Case {
        std::string query;
        const char* expected;  // null: not found
    };
    const std::vector<Case> cases = {
        {"\x01Ole10Native", "native"},
        {"\x01ole10NATIVE", "native"},  // ASCII letters ignore case
        {"\x01" "CompObj", "compobj"},
        {"\x06Primary", "primary"},
        {"Primary", nullptr},           // the control byte belongs to the name
        {"workbook", "workbook"},
        {"Contents", "contents"},
        {"Größe", "size"},
        {"grÖße", nullptr},  // only ASCII letters fold
        {"GRÖSSE", nullptr},
        {"\xF0\x9F\x98\x80X", "emoji"},  // a surrogate pair
        {longest, "long"},
        {"\x01Ole10Nativ", nullptr},
        {"\x01Ole10Native2", nullptr},
        {"", nullptr},
        {"Package", nullptr},             // a storage, not a stream
        {"Gr\xC3", nullptr},              // cut UTF-8
        {"\xC0\x81Ole10Native", nullptr}, // overlong form of 0x01
        {"\xED\xA0\x80", nullptr},        // an encoded surrogate
    };
    OpenedStorage file(buildCfb(specs));
    ASSERT_TRUE(file.open());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.query);
        std::optional<Bytes> got = file.read(c.query);
        if (c.expected == nullptr) {
            EXPECT_FALSE(got.has_value());
        } else {
            EXPECT_EQ(got, bytesOf(c.expected));
        }
    }
    // A failed search leaves no current stream.
    ASSERT_NE(file.ole.findStream(file.storage, "Workbook"), 0);
    EXPECT_EQ(file.ole.findStream(file.storage, "Missing"), 0);
    EXPECT_EQ(file.ole.openStream(file.storage), nullptr);
    EXPECT_EQ(file.ole.findStream(file.storage, nullptr), 0);
    EXPECT_EQ(file.close(), "");
}

}  // namespace
}  // namespace tneftest
