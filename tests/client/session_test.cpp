// The client over a module linked into the program: a stream opened from
// memory, embedded messages listed and extracted at every depth, and the
// memory and file outputs. (Embedded messages that can't be read are
// tested through the tool, in tests/cli/embedded_messages_test.cpp.)
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "client/tnef_client.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

using namespace tnefclient;

std::string textOf(const std::vector<uint8_t>& bytes) {
    return std::string(bytes.begin(), bytes.end());
}

class ClientSession : public ::testing::Test {
protected:
    // Opens `stream` in a fresh session, and checks at the end that every
    // session left nothing allocated.
    Session& open(Bytes stream) {
        sessions_.push_back(std::make_unique<Session>(module_, host_.context()));
        std::string error;
        EXPECT_EQ(sessions_.back()->openBytes(std::move(stream), {}, &error), Opened::kOk) << error;
        return *sessions_.back();
    }
    void TearDown() override {
        sessions_.clear();
        EXPECT_EQ(host_.memory().leakReport(), "");
    }

    ReaderModule module_ = ReaderModule::linked(&tnefGetContainerReaderInterfaceEx, TNEF_BUILD_DIR);
    tnefhost::PosixHost host_;
    std::vector<std::unique_ptr<Session>> sessions_;
};

TEST_F(ClientSession, EmbeddedMessagesAreListedAndExtractedAtEveryDepth) {
    Bytes third = noteMessage("Deepest", "third body", {{"c.txt", bytesOf("C"), {}}});
    Bytes second = noteMessage("Inner", "second body",
                        {{"b.txt", bytesOf("BB"), {}}, embeddedMessage("Deeper", third)});
    Session& session = open(noteMessage("Outer", "first body",
                                 {{"a.txt", bytesOf("A"), {}}, embeddedMessage("Fwd", second)}));
    Listing listing = readListing(session, true);
    EXPECT_TRUE(listing.complete);
    ASSERT_EQ(listing.subfiles.size(), 3u);
    EXPECT_FALSE(listing.subfiles[1].nested);
    EXPECT_EQ(listing.subfiles[2].name, "Fwd_zd2");
    ASSERT_TRUE(listing.subfiles[2].nested);
    const Listing& inner = listing.subfiles[2].nested->listing;
    EXPECT_EQ(inner.summary.subject, "Inner");
    ASSERT_EQ(inner.subfiles.size(), 3u);
    ASSERT_TRUE(inner.subfiles[2].nested);
    const Listing& deepest = inner.subfiles[2].nested->listing;
    EXPECT_EQ(deepest.summary.subject, "Deepest");
    ASSERT_EQ(deepest.subfiles.size(), 2u);
    EXPECT_EQ(deepest.subfiles[1].name, "c.txt");

    std::vector<uint8_t> bytes;
    EXPECT_EQ(session.extractToMemory(2, &bytes).status, kTnefOk);
    EXPECT_EQ(bytes, second);  // the embedded message's own stream, byte for byte
    Session child(module_, host_.context());
    std::string error;
    ASSERT_EQ(child.openEmbedded(session, 2, &error), Opened::kOk) << error;
    EXPECT_EQ(child.depth(), 1);
    EXPECT_EQ(child.extractToMemory(1, &bytes).status, kTnefOk);
    EXPECT_EQ(textOf(bytes), "BB");
    ExtractSettings bare{BodyChoice::kText, true};
    EXPECT_EQ(child.extractToMemory(child.messageIndex(), &bytes, bare).status, kTnefOk);
    EXPECT_EQ(textOf(bytes), "second body");

    auto file = std::filesystem::temp_directory_path() / ("tnef-client-" + std::to_string(::getpid()));
    EXPECT_EQ(child.extractToFile(1, file.string()).status, kTnefOk);
    EXPECT_EQ(readFile(file.string()), bytesOf("BB"));
    std::filesystem::remove(file);
    EXPECT_EQ(child.extractToFile(1, (file / "b.txt").string()).status, kTnefOutputUnusable);
}

}  // namespace
}  // namespace tneftest
