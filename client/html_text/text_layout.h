// How HTML becomes text, as a browser lays text out: told element by
// element (start, end, text, all UTF-8, element names in lower case) by a
// parser that has already decoded the entities and closed what the
// document left open.
//
//   - Block elements (p, div, h1-h6, li, table, tr, blockquote, ...) start
//     and end lines; <br> ends one; cells of a row are parted by a tab. A
//     paragraph is a block like any other: mail HTML gives paragraphs no
//     margins and marks an empty line with a paragraph of its own.
//   - Runs of white space collapse to one space and vanish at the start and
//     end of a line, except inside pre, textarea, listing, xmp and plaintext;
//     a no-break space stays a space of its own.
//   - A link keeps its target in brackets after its text ("site [https://
//     example.com/]"), unless the target is empty, a fragment (#...), or
//     what the text shows (but for a mailto:, tel:, http:// or https://
//     in front and a closing slash).
//   - What head, script, style, template and title hold is left out.
//
// Line ends are CRLF; the text ends with one, and line ends at its start or
// end are left out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "rtf/output_sink.h"

namespace tnefclient {

class TextLayout {
public:
    explicit TextLayout(tnefrtf::OutputSink& text) : out_(text) {}

    // `href` is the element's href attribute, when it has one.
    void startElement(std::string_view name, std::string_view href);
    void endElement(std::string_view name);
    void characters(std::string_view text);
    // The document has ended. False when the sink refused a write.
    bool finish();
    bool failed() const { return out_.failed(); }

private:
    struct Link {
        std::string target;
        std::string text;  // what the link shows, as far as needed to compare
    };

    void lineBreaks(int count);
    // Text written as it is, after the line ends or space that it wants.
    void content(std::string_view text);
    void beforeContent();
    void endLine();  // a line end of the document's own (<br>, a new line in <pre>)
    void noteLinkText(std::string_view text);
    void flowingText(std::string_view text);
    void preformattedText(std::string_view text);
    void closeLink();

    tnefrtf::OutputBuffer out_;
    int hidden_ = 0;         // depth inside elements whose content is left out
    int preformatted_ = 0;   // depth inside elements that keep white space
    // Line ends wanted before the next content: a block boundary asks for
    // at least one, each line end of the document's own adds one.
    int pendingBreaks_ = 0;
    bool started_ = false;   // some content has been written
    bool space_ = false;     // white space seen since the last content
    std::vector<Link> links_;
    std::vector<int> cells_;  // cells seen in the current row of each open table
};

}  // namespace tnefclient
