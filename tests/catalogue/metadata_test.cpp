// Metadata queries: the default set of the message and requests by tag
// (refused memory in both modes is swept in tests/sweeps).
#include <gtest/gtest.h>

#include "reader/operations.h"
#include "tests/support/reader_fixture.h"

namespace tneftest {
namespace {

constexpr uint64_t kSent = 0x01C9CC5E12345678ull;

Bytes queriedStream() {
    return buildMessage(
        {.props = {Prop::string8(kTagSubject8, "Lo"), Prop::unicode(kTagSubject16, "Hi"),
                   Prop::time(kTagClientSubmitTime, kSent), Prop::int32(kTagImportance, 2),
                   Prop::unicode(kTagSentRepresentingName16, "Ann")},
         .attachments = {{.props = {Prop::int32(kTagAttachMethod, 1),
                                    Prop::string8(kTagAttachLongFilename8, "a.txt")}}}});
}

// The first `count` bytes at an element's value.
Bytes valueBytes(const MetaElement* element, size_t count) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(element->value);
    return Bytes(bytes, bytes + count);
}

// The summary slots as copies: a 16-bit text is taken before an 8-bit one;
// without a recipient table, To, Cc and Bcc are answered as elements
// without value.
TEST(Metadata, DefaultSetOfTheMessage) {
    OpenedStream s(queriedStream());
    MetadataResult result{};
    ASSERT_EQ(tnefGetSubfileMetadata(s.container, 0, 0, nullptr, &result, &s.memory), 0);
    ASSERT_EQ(result.count, 7);
    const char* names[] = {"From", "Sent", "To", "Cc", "Bcc", "Subject", "Priority"};
    const int32_t types[] = {kElementText16, kElementTime, 0, 0, 0, kElementText16, kElementInteger};
    for (int i = 0; i < 7; ++i) {
        EXPECT_STREQ(result.items[i]->name, names[i]);
        EXPECT_EQ(result.items[i]->type, types[i]) << i;
        EXPECT_EQ(result.items[i]->hasValue, types[i] != 0) << i;
    }
    Bytes sent;
    putLe64(sent, kSent);
    EXPECT_EQ(valueBytes(result.items[1], 8), sent);
    ASSERT_EQ(result.items[5]->size, 6);
    EXPECT_EQ(valueBytes(result.items[5], 8), utf16(std::string("Hi\0\0", 4)))
        << "two zero bytes behind the copy";
    EXPECT_EQ(result.items[6]->value, 2u);
    releaseMetadata(s.results, result, 7);
    EXPECT_EQ(s.results.liveBlocks(), 0u);
}

TEST(Metadata, EntryChecks) {
    OpenedStream s(queriedStream());
    OpenedStream rooted(queriedStream(), 0x40000);
    MetadataRequest request{0, kTagSubject16};
    MetadataRequest* list[] = {&request};
    ResultMemory noAllocator{&s, nullptr};
    struct Case { const char* what; TnefContainer* container; int32_t index, count;
                  MetadataRequest** requests; ResultMemory* memory; int32_t status; };
    const Case cases[] = {
        {"null container", nullptr, 0, 0, nullptr, &s.memory, 34},
        {"null memory", s.container, 0, 0, nullptr, nullptr, 34},
        {"null allocator", s.container, 0, 0, nullptr, &noAllocator, 34},
        {"negative count", s.container, 0, -1, list, &s.memory, 34},
        {"count 0 with a list, bad index", s.container, 99, 0, list, &s.memory, 0},
        {"count without a list", s.container, 0, 1, nullptr, &s.memory, 34},
        {"index too large", s.container, 2, 1, list, &s.memory, 34},
        {"negative index", s.container, -1, 1, list, &s.memory, 34},
        {"attachment, default mode", s.container, 1, 0, nullptr, &s.memory, 0},
        {"root entry", rooted.container, 0, 1, list, &rooted.memory, 0},
    };
    for (const Case& c : cases) {
        MetadataResult result{nullptr, -9, nullptr};
        EXPECT_EQ(tnefGetSubfileMetadata(c.container, c.index, c.count, c.requests, &result, c.memory),
                  c.status)
            << c.what;
        EXPECT_EQ(result.count, -9) << c.what << ": nothing written";
        EXPECT_EQ(result.items, nullptr) << c.what;
    }
    EXPECT_EQ(tnefGetSubfileMetadata(s.container, 0, 0, nullptr, nullptr, &s.memory), 34);
}

TEST(Metadata, RequestsByTag) {
    OpenedStream s(queriedStream());
    // `found`: the tags of the answer, packed.
    struct Case { const char* what; std::vector<uint32_t> tags; int32_t index; std::vector<uint32_t> found;
                  bool itemsWritten; };
    const Case cases[] = {
        {"middle one absent", {kTagSubject16, 0x0ABC0003, kTagImportance}, 0,
         {kTagSubject16, kTagImportance}, true},
        {"none found", {kTagSenderName8}, 0, {}, true},
        {"none passes the filter", {0x00001003, 0xFFFF0003, 0x12341003, 0x00370008}, 0, {}, false},
        {"attachment", {kTagAttachLongFilename8}, 1, {kTagAttachLongFilename8}, true},
    };
    for (const Case& c : cases) {
        std::vector<MetadataRequest> requests;
        for (uint32_t tag : c.tags) requests.push_back({0, tag});
        std::vector<MetadataRequest*> list;
        for (auto& r : requests) list.push_back(&r);
        list.push_back(nullptr);
        MetadataRequest otherKind{1, kTagSubject16};
        list.push_back(&otherKind);
        MetadataResult result{nullptr, -9, nullptr};
        EXPECT_EQ(tnefGetSubfileMetadata(s.container, c.index, static_cast<int32_t>(list.size()),
                                         list.data(), &result, &s.memory),
                  0)
            << c.what;
        EXPECT_EQ(result.items != nullptr, c.itemsWritten) << c.what;
        EXPECT_EQ(result.count, c.found.empty() ? -9 : static_cast<int32_t>(c.found.size())) << c.what;
        for (size_t i = 0; i < c.found.size(); ++i) {
            EXPECT_EQ(result.items[i]->tag, c.found[i]) << c.what;
            EXPECT_EQ(result.items[i]->name, nullptr) << c.what;
        }
        releaseMetadata(s.results, result, static_cast<int32_t>(c.tags.size()));
        EXPECT_EQ(s.results.liveBlocks(), 0u) << c.what;
    }
}

}  // namespace
}  // namespace tneftest
