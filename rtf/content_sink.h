// What the document reader hands a writer: text already decoded to UTF-8,
// with the formatting in force, and the breaks between it.
#pragma once

#include <string_view>

namespace tnefrtf {

struct TextFormat {
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool inTable = false;  // the paragraph is a table cell's
};

enum class Break {
    kParagraph,  // \par, \sect, \page, or a backslash before a line end
    kLine,       // \line, and the end of a nested table's row
    kCell,       // \cell
    kRow,        // \row
};

class ContentSink {
public:
    virtual ~ContentSink() = default;
    virtual void text(std::string_view utf8, const TextFormat& format) = 0;
    virtual void breakHere(Break kind, const TextFormat& format) = 0;
    // The result of a HYPERLINK field starts and ends; `target` is the
    // field's address as written, not yet judged safe.
    virtual void linkStart(std::string_view target) = 0;
    virtual void linkEnd() = 0;
    // The document ends, closed or not.
    virtual void finish() = 0;
};

}  // namespace tnefrtf
