// Helpers of the render tests: messages with given properties, and summary
// slots replaced after open.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "reader/strings.h"
#include "stream/property_access.h"
#include "tests/support/reader_fixture.h"

namespace tneftest::render {

constexpr uint64_t kSent2006 = 127806446450000000ULL;  // Mon Jan 02 03:04:05 2006 UTC

// Puts a text element into a summary slot in place of what open made; the
// value's buffer holds exactly the text, so that the sanitizer sees any read
// past it.
inline void setSlot(OpenedStream& s, int32_t index, int32_t type, const std::string& text,
                    const char* name) {
    HostAllocator* a = &s.host.context()->allocator;
    tnefFreeElement(a, s.container->summary[index]);
    auto* e = static_cast<MetaElement*>(a->alloc(a, sizeof(MetaElement)));
    *e = MetaElement{1, 0, type, tnefCopyText(a, name), 0, static_cast<int32_t>(text.size())};
    void* value = a->alloc(a, text.size());
    std::memcpy(value, text.data(), text.size());
    e->value = reinterpret_cast<uintptr_t>(value);
    s.container->summary[index] = e;
}

// A message with these properties and attachments.
inline MessageLayout withProps(std::vector<Prop> props, std::vector<AttachmentLayout> attachments = {}) {
    return MessageLayout{std::nullopt, std::nullopt, std::nullopt, props, std::nullopt, attachments};
}

}  // namespace tneftest::render
