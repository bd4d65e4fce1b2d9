#include "rtf/output_sink.h"

#include <array>

namespace tnefrtf {

namespace {

// The reference of each byte HTML gives a meaning to; null for the rest.
constexpr std::array<const char*, 256> kReferences = [] {
    std::array<const char*, 256> table{};
    table['&'] = "&amp;";
    table['<'] = "&lt;";
    table['>'] = "&gt;";
    table['"'] = "&quot;";
    table['\''] = "&#39;";
    return table;
}();

}  // namespace

OutputBuffer::OutputBuffer(OutputSink& sink) : sink_(sink) { buffer_.reserve(kFlushSize + 1024); }

void OutputBuffer::appendEscaped(std::string_view text) {
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char* reference = kReferences[static_cast<uint8_t>(text[i])];
        if (reference == nullptr) continue;
        buffer_.append(text.data() + start, i - start);
        buffer_.append(reference);
        start = i + 1;
    }
    buffer_.append(text.data() + start, text.size() - start);
    if (buffer_.size() >= kFlushSize) flush();
}

void OutputBuffer::flush() {
    if (!failed_ && !buffer_.empty() && !sink_.write(buffer_)) failed_ = true;
    buffer_.clear();
}

}  // namespace tnefrtf
