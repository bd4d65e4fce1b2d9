// The control words the readers act on, looked up by name. Many names share
// one meaning (the destinations whose content is never text, the forms of
// underline); a name that isn't here is a word the readers skip.
#pragma once

#include <cstdint>
#include <string_view>

namespace tnefrtf {

enum class Keyword : uint8_t {
    kUnknown,
    // The header.
    kRtf,
    kAnsi,
    kMac,
    kPc,
    kPca,
    kAnsiCodePage,
    kDefaultFont,
    kFromHtml,
    kFromText,
    // Fonts.
    kFontTable,
    kFont,
    kFontCharset,
    kFontCodePage,
    // Destinations.
    kIgnoredDestination,  // never text: tables, pictures, objects' data, headers, ...
    kTextDestination,     // text that is part of the body: list text, object results
    kField,
    kFieldInstruction,
    kFieldResult,
    kHtmlTag,
    kUnicodePair,         // \upr: an ANSI group and its \ud Unicode twin
    kUnicodeDestination,  // \ud
    kHtmlRtf,
    // Breaks.
    kParagraph,
    kLine,
    kTab,
    kCell,
    kRow,
    kNestedCell,
    kNestedRow,
    // Character and paragraph properties.
    kBold,
    kItalic,
    kUnderline,
    kUnderlineNone,
    kHidden,
    kPlain,
    kParagraphDefaults,
    kInTable,
    kTableLevel,
    // Characters.
    kUnicode,
    kUnicodeSkip,
    kCharacter,  // a named character: \emdash, \bullet, \lquote, ...
};

struct KeywordInfo {
    Keyword keyword = Keyword::kUnknown;
    char32_t character = 0;  // the code point of a kCharacter
};

KeywordInfo lookupKeyword(std::string_view name);

}  // namespace tnefrtf
