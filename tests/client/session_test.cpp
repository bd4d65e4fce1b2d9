// The client over a module linked into the program: embedded messages
// opened at every depth and extracted to memory and to files, with nothing
// left allocated. (The tool's tests list embedded messages in full.)
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "client/tnef_client.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

using namespace tnefclient;

TEST(ClientSession, EmbeddedMessagesAreOpenedAndExtractedAndNothingIsLeftAllocated) {
    tnefhost::PosixHost host;
    ReaderModule module = ReaderModule::linked(&tnefGetContainerReaderInterfaceEx, TNEF_BUILD_DIR);
    Bytes third = noteMessage("Deepest", "third body", {{"c.txt", bytesOf("C"), {}}});
    Bytes second = noteMessage("Inner", "second body",
                               {{"b.txt", bytesOf("BB"), {}}, embeddedMessage("Deeper", third)});
    {
        Session session(module, host.context());
        std::string error;
        ASSERT_EQ(session.openBytes(noteMessage("Outer", "first body",
                                                {{"a.txt", bytesOf("A"), {}}, embeddedMessage("Fwd", second)}),
                                    {}, &error),
                  Opened::kOk)
            << error;
        Listing listing = readListing(session, true);
        ASSERT_TRUE(listing.subfiles.at(2).nested);
        EXPECT_EQ(listing.subfiles[2].nested->listing.subfiles.at(2).nested->listing.subfiles.at(1).name, "c.txt");

        Bytes bytes;
        EXPECT_EQ(session.extractToMemory(2, &bytes).status, kTnefOk);
        EXPECT_EQ(bytes, second);  // the embedded message's own stream, byte for byte
        Session child(module, host.context());
        ASSERT_EQ(child.openEmbedded(session, 2, &error), Opened::kOk) << error;
        EXPECT_EQ(child.depth(), 1);
        EXPECT_EQ(child.extractToMemory(1, &bytes).status, kTnefOk);
        EXPECT_EQ(bytes, bytesOf("BB"));
        ExtractSettings bare{BodyChoice::kText, true};
        EXPECT_EQ(child.extractToMemory(child.messageIndex(), &bytes, bare).status, kTnefOk);
        EXPECT_EQ(bytes, bytesOf("second body"));

        auto file = std::filesystem::temp_directory_path() / ("tnef-client-" + std::to_string(::getpid()));
        EXPECT_EQ(child.extractToFile(1, file.string()).status, kTnefOk);
        EXPECT_EQ(readFile(file.string()), bytesOf("BB"));
        std::filesystem::remove(file);
        EXPECT_EQ(child.extractToFile(1, (file / "b.txt").string()).status, kTnefOutputUnusable);
    }
    EXPECT_EQ(host.memory().leakReport(), "");
}

}  // namespace
}  // namespace tneftest
