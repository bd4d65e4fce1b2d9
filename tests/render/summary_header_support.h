// Helpers of the HTML and RTF summary header tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "reader/strings.h"
#include "stream/property_access.h"
#include "tests/support/reader_fixture.h"

namespace tneftest::summaryheader {

using FieldWriter = int32_t (*)(TnefContainer*, TnefObject*, int32_t, IoObject*);

constexpr uint64_t kSent2006 = 127806446450000000ULL;  // Mon Jan 02 03:04:05 2006 UTC

// The eight lines as one text; the host's current charset stays as it was.
inline std::string writeHeader(OpenedStream& s, FieldWriter write) {
    setenv("TZ", "UTC", 1);
    tzset();
    tnefhost::MemoryIo output;
    const CharsetId before = s.host.context()->currentCharset;
    for (int32_t index = 0; index < 8; ++index) {
        EXPECT_EQ(write(s.container, objectAt(s.container, 0), index, output.io()), 0);
    }
    EXPECT_EQ(s.host.context()->currentCharset, before);
    return output.text();
}

// Puts a text element into a summary slot in place of what open made.
inline void setSlot(OpenedStream& s, int32_t index, int32_t type, const std::string& text,
                    const char* name) {
    HostAllocator* a = &s.host.context()->allocator;
    tnefFreeElement(a, s.container->summary[index]);
    auto* e = static_cast<MetaElement*>(a->alloc(a, sizeof(MetaElement)));
    *e = MetaElement{1, 0, type, tnefCopyText(a, name), 0, static_cast<int32_t>(text.size())};
    void* value = a->alloc(a, text.size() + 1);
    std::memcpy(value, text.data(), text.size());
    e->value = reinterpret_cast<uintptr_t>(value);
    s.container->summary[index] = e;
}

// A message with these properties and attachments.
inline MessageLayout withProps(std::vector<Prop> props, std::vector<AttachmentLayout> attachments = {}) {
    return MessageLayout{std::nullopt, std::nullopt, std::nullopt, props, std::nullopt, attachments};
}

// UTF-16LE of a UTF-8 text, as a byte string.
inline std::string wide(const std::string& text) {
    Bytes bytes = utf16(text);
    return std::string(bytes.begin(), bytes.end());
}

// One header case: a message, a change made to it after open, and the
// eight lines the writer must give.
using Adjust = std::function<void(OpenedStream&)>;
struct HeaderCase {
    const char* name;
    MessageLayout plan;
    Adjust adjust;
    std::string expected;
};

inline void checkHeaders(const std::vector<HeaderCase>& cases, FieldWriter write) {
    for (const HeaderCase& c : cases) {
        SCOPED_TRACE(c.name);
        OpenedStream s(buildMessage(c.plan));
        ASSERT_EQ(s.status, 0);
        if (c.adjust) c.adjust(s);
        EXPECT_EQ(writeHeader(s, write), c.expected);
        EXPECT_EQ(s.close(), "");
    }
}

}  // namespace tneftest::summaryheader
