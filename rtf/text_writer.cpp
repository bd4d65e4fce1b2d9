#include "rtf/text_writer.h"

namespace tnefrtf {

void TextWriter::text(std::string_view utf8, const TextFormat& format) {
    if (format.inTable) {
        if (cellSeparator_) out_.append('\t');
        if (cellParagraph_) out_.append(' ');
        cellSeparator_ = cellParagraph_ = false;
    }
    out_.append(utf8);
}

void TextWriter::breakHere(Break kind, const TextFormat& format) {
    switch (kind) {
        case Break::kParagraph:
        case Break::kLine:
            if (format.inTable) {
                cellParagraph_ = true;
            } else {
                out_.append("\r\n");
            }
            break;
        case Break::kCell:
            if (cellSeparator_) out_.append('\t');
            cellSeparator_ = true;
            cellParagraph_ = false;
            break;
        case Break::kRow:
            cellSeparator_ = cellParagraph_ = false;
            out_.append("\r\n");
            break;
    }
}

}  // namespace tnefrtf
