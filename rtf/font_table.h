// The font table of a document, as far as reading text needs it: the code
// page each font's text is written in.
#pragma once

#include <cstdint>
#include <unordered_map>

namespace tnefrtf {

class FontTable {
public:
    // The document's code page (\ansicpgN and friends), for fonts that name
    // none and for fonts not in the table.
    void setDocumentCodePage(uint32_t codePage) { documentCodePage_ = codePage; }
    uint32_t documentCodePage() const { return documentCodePage_; }

    // A font entry starts (\fN inside \fonttbl); the two setters apply to it.
    void startFont(int32_t number);
    void setCharset(int32_t charset);
    void setCodePage(int32_t codePage);

    // The code page of the text of font `number`; a negative number is the
    // document's default font (\deffN).
    uint32_t codePageOf(int32_t number) const;
    void setDefaultFont(int32_t number) { defaultFont_ = number; }

private:
    struct Font {
        uint32_t charsetCodePage = 0;  // from \fcharsetN
        uint32_t codePage = 0;         // from \cpgN, which wins
    };
    Font* current();

    std::unordered_map<int32_t, Font> fonts_;
    int32_t currentNumber_ = -1;
    int32_t defaultFont_ = -1;
    uint32_t documentCodePage_ = 1252;
};

}  // namespace tnefrtf
