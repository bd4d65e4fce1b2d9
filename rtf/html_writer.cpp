#include "rtf/html_writer.h"

#include "rtf/hyperlink.h"

namespace tnefrtf {

namespace {

constexpr std::string_view kHead =
    "<!DOCTYPE html>\r\n<html>\r\n<head>\r\n<meta charset=\"utf-8\">\r\n"
    "<style>p{margin:0;white-space:pre-wrap}table{border-collapse:collapse}"
    "td{border:1px solid #999;padding:2px 4px;vertical-align:top;white-space:pre-wrap}</style>\r\n"
    "</head>\r\n<body>\r\n";
constexpr std::string_view kTail = "</body>\r\n</html>\r\n";

// Inline elements, outermost first.
constexpr struct {
    unsigned bit;
    std::string_view open;
    std::string_view close;
} kInlineTags[] = {
    {1, "<b>", "</b>"},
    {2, "<i>", "</i>"},
    {4, "<u>", "</u>"},
};

unsigned inlineOf(const TextFormat& format) {
    return (format.bold ? 1u : 0u) | (format.italic ? 2u : 0u) | (format.underline ? 4u : 0u);
}

}  // namespace

HtmlWriter::HtmlWriter(OutputBuffer& out) : out_(out) { out_.append(kHead); }

void HtmlWriter::text(std::string_view utf8, const TextFormat& format) {
    openBlock(format.inTable);
    openLink();
    setInline(inlineOf(format));
    out_.appendEscaped(utf8);
}

void HtmlWriter::breakHere(Break kind, const TextFormat& format) {
    switch (kind) {
        case Break::kParagraph:
            if (format.inTable) {
                openBlock(true);
                closeInline();
                out_.append("<br>");
            } else if (paragraph_) {
                closeParagraph();
            } else {
                closeTable();
                out_.append("<p><br></p>\r\n");
            }
            break;
        case Break::kLine:
            openBlock(format.inTable);
            closeInline();
            out_.append("<br>");
            break;
        case Break::kCell:
            openBlock(true);
            closeCell();
            break;
        case Break::kRow:
            if (!table_) break;
            closeCell();
            if (row_) out_.append("</tr>\r\n");
            row_ = false;
            break;
    }
}

void HtmlWriter::linkStart(std::string_view target) {
    closeLink();
    links_.emplace_back(isSafeLinkTarget(target) ? target : std::string_view());
}

void HtmlWriter::linkEnd() {
    if (links_.empty()) return;
    closeLink();
    links_.pop_back();
}

void HtmlWriter::finish() {
    closeParagraph();
    closeTable();
    out_.append(kTail);
}

// Makes sure the text has its block: a paragraph, or a cell of a table.
void HtmlWriter::openBlock(bool inTable) {
    if (inTable) {
        closeParagraph();
        openCell();
        return;
    }
    closeTable();
    if (!paragraph_) {
        out_.append("<p>");
        paragraph_ = true;
    }
}

void HtmlWriter::closeParagraph() {
    if (!paragraph_) return;
    closeLink();
    out_.append("</p>\r\n");
    paragraph_ = false;
}

void HtmlWriter::openCell() {
    if (!table_) {
        out_.append("<table>\r\n");
        table_ = true;
    }
    if (!row_) {
        out_.append("<tr>");
        row_ = true;
    }
    if (!cell_) {
        out_.append("<td>");
        cell_ = true;
    }
}

void HtmlWriter::closeCell() {
    if (!cell_) return;
    closeLink();
    out_.append("</td>");
    cell_ = false;
}

void HtmlWriter::closeTable() {
    if (!table_) return;
    closeCell();
    if (row_) out_.append("</tr>\r\n");
    out_.append("</table>\r\n");
    table_ = row_ = false;
}

// Brings the open inline elements to `wanted`: closes from the innermost
// down to the first that must change, then opens what is missing.
void HtmlWriter::setInline(unsigned wanted) {
    if (open_ == wanted) return;
    size_t keep = 0;
    while (keep < std::size(kInlineTags) &&
           (open_ & kInlineTags[keep].bit) == (wanted & kInlineTags[keep].bit)) {
        ++keep;
    }
    for (size_t i = std::size(kInlineTags); i-- > keep;) {
        if (open_ & kInlineTags[i].bit) out_.append(kInlineTags[i].close);
    }
    for (size_t i = keep; i < std::size(kInlineTags); ++i) {
        if (wanted & kInlineTags[i].bit) out_.append(kInlineTags[i].open);
    }
    open_ = wanted;
}

void HtmlWriter::closeInline() { setInline(0); }

void HtmlWriter::closeLink() {
    closeInline();
    if (!linkOpen_) return;
    out_.append("</a>");
    linkOpen_ = false;
}

void HtmlWriter::openLink() {
    if (linkOpen_ || links_.empty() || links_.back().empty()) return;
    closeInline();
    out_.append("<a href=\"");
    out_.appendEscaped(links_.back());
    out_.append("\">");
    linkOpen_ = true;
}

}  // namespace tnefrtf
