// Simple, safe HTML from native RTF: a whole UTF-8 document of paragraphs,
// line breaks, bold, italic and underline, links from HYPERLINK fields and
// tables as rows of cells. Every character of the document's text is
// escaped, and only links to harmless addresses are made, so nothing in the
// RTF can become markup or script.
#pragma once

#include <string>
#include <vector>

#include "rtf/content_sink.h"
#include "rtf/output_sink.h"

namespace tnefrtf {

class HtmlWriter final : public ContentSink {
public:
    explicit HtmlWriter(OutputBuffer& out);

    void text(std::string_view utf8, const TextFormat& format) override;
    void breakHere(Break kind, const TextFormat& format) override;
    void linkStart(std::string_view target) override;
    void linkEnd() override;
    void finish() override;

private:
    void openBlock(bool inTable);
    void closeParagraph();
    void closeTable();
    void openCell();
    void closeCell();
    void setInline(unsigned wanted);
    void closeInline();
    void closeLink();
    void openLink();

    OutputBuffer& out_;
    bool paragraph_ = false;
    bool table_ = false;
    bool row_ = false;
    bool cell_ = false;
    unsigned open_ = 0;  // the inline elements open, a bit each
    bool linkOpen_ = false;
    // The targets of the links the text is in, innermost last; an empty
    // one stands for a link that is left out.
    std::vector<std::string> links_;
};

}  // namespace tnefrtf
