// Opening the real-world samples: the status and the objects found.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

const char* typeOf(const TnefObject* object) {
    if (object->kind == kObjectMessage) return "message";
    return object->attachKind == kAttachOle ? "ole" : "attachment";
}

TEST(Corpus, OpenGivesTheExpectedStatusAndObjects) {
    std::string dir = corpusDir();
    if (dir.empty()) GTEST_SKIP() << "no sample folder (set TNEF_CORPUS or provide ../shared/corpus)";
    std::ifstream in(dir + "/expected.json");
    ASSERT_TRUE(in.good()) << "expected.json missing in " << dir;
    nlohmann::json expected = nlohmann::json::parse(in);
    int files = 0;
    for (const auto& [file, want] : expected.items()) {
        SCOPED_TRACE(file);
        OpenedStream s(readFile(dir + "/" + file));
        EXPECT_EQ(s.status, want["open_status"].get<int32_t>());
        ASSERT_NE(s.container, nullptr);
        const auto& subfiles = want["subfiles"];
        ASSERT_EQ(s.container->objectCount, static_cast<int32_t>(subfiles.size()));
        for (const auto& sub : subfiles) {
            TnefObject* object = objectAt(s.container, sub["index"].get<int32_t>());
            ASSERT_NE(object, nullptr);
            EXPECT_EQ(typeOf(object), sub["type"].get<std::string>()) << sub["index"];
            EXPECT_EQ(object->dataSize, sub["size"].get<int32_t>()) << sub["index"];
        }
        EXPECT_EQ(s.close(), "");
        ++files;
    }
    EXPECT_GT(files, 0);
}

}  // namespace
}  // namespace tneftest
