// Plain text from RTF: paragraphs and line breaks as CRLF, a table's cells
// separated by tabs and each row on a line of its own. Formatting and links
// leave only their text.
#pragma once

#include "rtf/content_sink.h"
#include "rtf/output_sink.h"

namespace tnefrtf {

class TextWriter final : public ContentSink {
public:
    explicit TextWriter(OutputBuffer& out) : out_(out) {}

    void text(std::string_view utf8, const TextFormat& format) override;
    void breakHere(Break kind, const TextFormat& format) override;
    void linkStart(std::string_view) override {}
    void linkEnd() override {}
    void finish() override {}

private:
    OutputBuffer& out_;
    // A cell ended and the next one has not started: its tab is written
    // before the next cell's text, and never at the end of a row.
    bool cellSeparator_ = false;
    // Paragraphs inside one cell are joined by a blank.
    bool cellParagraph_ = false;
};

}  // namespace tnefrtf
