#include "rtf/keywords.h"

#include <array>

namespace tnefrtf {

namespace {

struct Entry {
    std::string_view name;
    Keyword keyword;
    char32_t character = 0;
};

using K = Keyword;

constexpr Entry kEntries[] = {
    {"rtf", K::kRtf}, {"ansi", K::kAnsi}, {"mac", K::kMac}, {"pc", K::kPc}, {"pca", K::kPca},
    {"ansicpg", K::kAnsiCodePage}, {"deff", K::kDefaultFont}, {"fromhtml", K::kFromHtml},
    {"fromtext", K::kFromText},

    {"fonttbl", K::kFontTable}, {"f", K::kFont}, {"fcharset", K::kFontCharset}, {"cpg", K::kFontCodePage},

    {"colortbl", K::kIgnoredDestination}, {"stylesheet", K::kIgnoredDestination},
    {"info", K::kIgnoredDestination}, {"pict", K::kIgnoredDestination},
    {"nonshppict", K::kIgnoredDestination}, {"shp", K::kIgnoredDestination},
    {"shpinst", K::kIgnoredDestination}, {"shptxt", K::kIgnoredDestination},
    {"shprslt", K::kIgnoredDestination}, {"objdata", K::kIgnoredDestination},
    {"objclass", K::kIgnoredDestination}, {"objname", K::kIgnoredDestination},
    {"header", K::kIgnoredDestination}, {"headerl", K::kIgnoredDestination},
    {"headerr", K::kIgnoredDestination}, {"headerf", K::kIgnoredDestination},
    {"footer", K::kIgnoredDestination}, {"footerl", K::kIgnoredDestination},
    {"footerr", K::kIgnoredDestination}, {"footerf", K::kIgnoredDestination},
    {"footnote", K::kIgnoredDestination}, {"annotation", K::kIgnoredDestination},
    {"atnid", K::kIgnoredDestination}, {"atnauthor", K::kIgnoredDestination},
    {"atndate", K::kIgnoredDestination}, {"atnref", K::kIgnoredDestination},
    {"pn", K::kIgnoredDestination}, {"pntxta", K::kIgnoredDestination},
    {"pntxtb", K::kIgnoredDestination}, {"xe", K::kIgnoredDestination},
    {"tc", K::kIgnoredDestination}, {"txe", K::kIgnoredDestination},
    {"filetbl", K::kIgnoredDestination}, {"revtbl", K::kIgnoredDestination},
    {"listtable", K::kIgnoredDestination}, {"listoverridetable", K::kIgnoredDestination},
    {"rsidtbl", K::kIgnoredDestination}, {"template", K::kIgnoredDestination},
    {"generator", K::kIgnoredDestination}, {"themedata", K::kIgnoredDestination},
    {"colorschememapping", K::kIgnoredDestination}, {"latentstyles", K::kIgnoredDestination},
    {"datastore", K::kIgnoredDestination}, {"xmlnstbl", K::kIgnoredDestination},
    {"mhtmltag", K::kIgnoredDestination}, {"bkmkstart", K::kIgnoredDestination},
    {"bkmkend", K::kIgnoredDestination}, {"datafield", K::kIgnoredDestination},

    {"pntext", K::kTextDestination}, {"listtext", K::kTextDestination},
    {"result", K::kTextDestination},

    {"field", K::kField}, {"fldinst", K::kFieldInstruction}, {"fldrslt", K::kFieldResult},
    {"htmltag", K::kHtmlTag}, {"upr", K::kUnicodePair}, {"ud", K::kUnicodeDestination},
    {"htmlrtf", K::kHtmlRtf},

    {"par", K::kParagraph}, {"sect", K::kParagraph}, {"page", K::kParagraph},
    {"line", K::kLine}, {"tab", K::kTab}, {"cell", K::kCell}, {"row", K::kRow},
    {"nestcell", K::kNestedCell}, {"nestrow", K::kNestedRow},

    {"b", K::kBold}, {"i", K::kItalic}, {"ul", K::kUnderline}, {"uld", K::kUnderline},
    {"uldash", K::kUnderline}, {"uldashd", K::kUnderline}, {"uldashdd", K::kUnderline},
    {"uldb", K::kUnderline}, {"ulhwave", K::kUnderline}, {"ulldash", K::kUnderline},
    {"ulth", K::kUnderline}, {"ulthd", K::kUnderline}, {"ulthdash", K::kUnderline},
    {"ulthdashd", K::kUnderline}, {"ulthdashdd", K::kUnderline}, {"ulthldash", K::kUnderline},
    {"ululdbwave", K::kUnderline}, {"ulw", K::kUnderline}, {"ulwave", K::kUnderline},
    {"ulnone", K::kUnderlineNone}, {"v", K::kHidden}, {"plain", K::kPlain},
    {"pard", K::kParagraphDefaults}, {"intbl", K::kInTable}, {"itap", K::kTableLevel},

    {"u", K::kUnicode}, {"uc", K::kUnicodeSkip},
    {"emdash", K::kCharacter, 0x2014}, {"endash", K::kCharacter, 0x2013},
    {"emspace", K::kCharacter, 0x2003}, {"enspace", K::kCharacter, 0x2002},
    {"qmspace", K::kCharacter, 0x2005}, {"bullet", K::kCharacter, 0x2022},
    {"lquote", K::kCharacter, 0x2018}, {"rquote", K::kCharacter, 0x2019},
    {"ldblquote", K::kCharacter, 0x201C}, {"rdblquote", K::kCharacter, 0x201D},
    {"zwj", K::kCharacter, 0x200D}, {"zwnj", K::kCharacter, 0x200C},
    {"zwbo", K::kCharacter, 0x200B}, {"zwnbo", K::kCharacter, 0x2060},
    {"ltrmark", K::kCharacter, 0x200E}, {"rtlmark", K::kCharacter, 0x200F},
};

// Open addressing over a power of two well above the entry count, so that
// probes stay short.
constexpr size_t kSlotCount = 512;  // hashName gives 9 bits

// The length and three letters are enough to tell the names apart, and
// cheap to mix.
constexpr size_t hashName(std::string_view name) {
    uint32_t hash = static_cast<uint32_t>(name.size());
    hash = hash * 31 + static_cast<uint8_t>(name.front());
    hash = hash * 31 + static_cast<uint8_t>(name[name.size() / 2]);
    hash = hash * 31 + static_cast<uint8_t>(name.back());
    return (hash * 2654435761u) >> 23;
}

constexpr std::array<const Entry*, kSlotCount> kSlots = [] {
    std::array<const Entry*, kSlotCount> slots{};
    for (const Entry& entry : kEntries) {
        size_t at = hashName(entry.name);
        while (slots[at] != nullptr) at = (at + 1) & (kSlotCount - 1);
        slots[at] = &entry;
    }
    return slots;
}();

static_assert(std::size(kEntries) * 3 < kSlotCount, "keyword slots too full");

}  // namespace

KeywordInfo lookupKeyword(std::string_view name) {
    if (name.empty()) return {};
    for (size_t at = hashName(name); kSlots[at] != nullptr;
         at = (at + 1) & (kSlotCount - 1)) {
        if (kSlots[at]->name == name) return {kSlots[at]->keyword, kSlots[at]->character};
    }
    return {};
}

}  // namespace tnefrtf
