#include "rtf/font_table.h"

#include "rtf/code_pages.h"

namespace tnefrtf {

namespace {

// More fonts than any document has; the table stops growing there.
constexpr size_t kMaxFonts = 4096;

}  // namespace

void FontTable::startFont(int32_t number) {
    currentNumber_ = -1;
    if (number < 0 || (fonts_.size() >= kMaxFonts && fonts_.count(number) == 0)) return;
    currentNumber_ = number;
    fonts_[number] = Font{};
}

FontTable::Font* FontTable::current() {
    if (currentNumber_ < 0) return nullptr;
    auto found = fonts_.find(currentNumber_);
    return found == fonts_.end() ? nullptr : &found->second;
}

void FontTable::setCharset(int32_t charset) {
    if (Font* font = current()) font->charsetCodePage = codePageOfCharset(charset);
}

void FontTable::setCodePage(int32_t codePage) {
    if (Font* font = current()) font->codePage = codePage > 0 ? static_cast<uint32_t>(codePage) : 0;
}

uint32_t FontTable::codePageOf(int32_t number) const {
    auto found = fonts_.find(number < 0 ? defaultFont_ : number);
    if (found == fonts_.end()) return documentCodePage_;
    const Font& font = found->second;
    if (font.codePage != 0) return font.codePage;
    if (font.charsetCodePage != 0) return font.charsetCodePage;
    return documentCodePage_;
}

}  // namespace tnefrtf
