#include "rtf/document_reader.h"

#include <algorithm>

#include "rtf/hyperlink.h"

namespace tnefrtf {

namespace {

// The longest field instruction kept; a HYPERLINK's address stands early.
constexpr size_t kMaxInstruction = 4096;

bool switchedOn(const ControlWord& word) { return !word.hasParameter || word.parameter != 0; }

// Destinations that may follow \* and still be read.
bool readableAfterMark(Keyword keyword) {
    switch (keyword) {
        case Keyword::kFieldInstruction:
        case Keyword::kFieldResult:
        case Keyword::kHtmlTag:
        case Keyword::kUnicodeDestination:
        case Keyword::kTextDestination:
            return true;
        default:
            return false;
    }
}

}  // namespace

DocumentReader::DocumentReader(SinkChooser& chooser, CodePageDecoder& decoder)
    : chooser_(chooser), decoder_(decoder) {
    stack_.reserve(kMaxGroupDepth);
}

bool DocumentReader::skippedAsFallback() {
    if (fallbackLeft_ == 0) return false;
    --fallbackLeft_;
    return true;
}

void DocumentReader::noteFirstToken(bool isRtfWord) {
    if (!expectHeader_) return;
    expectHeader_ = false;
    rtfHeader_ = isRtfWord;
}

void DocumentReader::decide() {
    if (encapsulation_ != Encapsulation::kUnknown) return;
    encapsulation_ = declared_;
    sink_ = &chooser_.sinkFor(encapsulation_, rules_);
}

void DocumentReader::fontsChanged() { cachedFont_ = INT32_MIN; }

void DocumentReader::skipGroup(GroupState& state) {
    state.destination = Destination::kSkip;
    state.unicodePairResume = Destination::kSkip;
}

bool DocumentReader::receivesText(const GroupState& state) {
    switch (state.destination) {
        case Destination::kBody:
            // Content of the body ends the header, whether or not it is
            // shown: the encapsulation decides whether \htmlrtf hides it.
            decide();
            return !state.hidden && !(rules_.honourHtmlRtf && state.htmlRtf);
        case Destination::kHtmlTag:
        case Destination::kFieldInstruction:
            return true;
        default:
            return false;
    }
}

uint32_t DocumentReader::codePage(const GroupState& state) {
    // The tags of encapsulated HTML are in the document's code page, all
    // other text in its font's.
    if (state.destination == Destination::kHtmlTag) return fonts_.documentCodePage();
    if (state.font != cachedFont_) {
        cachedFont_ = state.font;
        cachedCodePage_ = fonts_.codePageOf(state.font);
    }
    return cachedCodePage_;
}

TextFormat DocumentReader::formatOf(const GroupState& state) const {
    return TextFormat{state.bold, state.italic, state.underline, state.inTable};
}

void DocumentReader::deliver(std::string_view utf8) {
    if (utf8.empty()) return;
    const GroupState& state = stack_.back();
    if (state.destination == Destination::kFieldInstruction) {
        std::string& instruction = fields_.back().instruction;
        instruction.append(utf8.substr(0, kMaxInstruction - std::min(kMaxInstruction, instruction.size())));
        return;
    }
    decide();
    sink_->text(utf8, state.destination == Destination::kHtmlTag ? TextFormat{} : formatOf(state));
}

void DocumentReader::deliverBytes(std::string_view bytes) {
    const GroupState& state = stack_.back();
    if (receivesText(state)) deliver(decoder_.bytes(bytes, codePage(state)));
}

// A sequence left waiting by a token that can't continue it.
void DocumentReader::flushDecoder() {
    if (decoder_.waiting() && receivesText(stack_.back())) deliver(decoder_.flush());
}

void DocumentReader::breakHere(Break kind) {
    const GroupState& state = stack_.back();
    if (!receivesText(state) || state.destination == Destination::kFieldInstruction) return;
    decide();
    sink_->breakHere(kind, state.destination == Destination::kHtmlTag ? TextFormat{} : formatOf(state));
}

void DocumentReader::groupStart() {
    if (ended_) return;
    if (!started_) {
        started_ = true;
        expectHeader_ = true;
        stack_.emplace_back();
        return;
    }
    if (overflowDepth_ > 0 || stack_.size() >= kMaxGroupDepth) {
        ++overflowDepth_;
        return;
    }
    noteFirstToken(false);
    flushDecoder();
    fallbackLeft_ = 0;
    destinationMark_ = false;
    decide();
    stack_.push_back(stack_.back());
}

void DocumentReader::groupEnd() {
    if (stack_.empty()) return;
    if (overflowDepth_ > 0) {
        --overflowDepth_;
        return;
    }
    noteFirstToken(false);
    flushDecoder();
    fallbackLeft_ = 0;
    destinationMark_ = false;
    closeFieldsFrom(stack_.size());
    stack_.pop_back();
    if (stack_.empty()) ended_ = true;
}

void DocumentReader::text(std::string_view run) {
    if (!reading()) return;
    noteFirstToken(false);
    destinationMark_ = false;
    if (fallbackLeft_ > 0) {
        size_t skipped = static_cast<size_t>(std::min<int64_t>(fallbackLeft_, static_cast<int64_t>(run.size())));
        fallbackLeft_ -= static_cast<int64_t>(skipped);
        run.remove_prefix(skipped);
        if (run.empty()) return;
    }
    deliverBytes(run);
}

void DocumentReader::hexByte(uint8_t byte) {
    if (!reading()) return;
    noteFirstToken(false);
    destinationMark_ = false;
    if (skippedAsFallback()) return;
    char c = static_cast<char>(byte);
    deliverBytes(std::string_view(&c, 1));
}

void DocumentReader::binary(std::string_view) {
    // Binary data belongs to pictures and objects, never to text; as a
    // fallback it counts as one character.
    if (!reading()) return;
    destinationMark_ = false;
}

void DocumentReader::controlSymbol(char symbol) {
    if (!reading()) return;
    noteFirstToken(false);
    if (skippedAsFallback()) return;
    if (symbol == '*') {
        destinationMark_ = true;
        return;
    }
    destinationMark_ = false;
    flushDecoder();
    GroupState& state = stack_.back();
    if (!receivesText(state)) return;
    switch (symbol) {
        case '\\':
        case '{':
        case '}':
            deliverBytes(std::string_view(&symbol, 1));
            break;
        case '~':
            deliver(decoder_.character(0x00A0));
            break;
        case '_':
            deliver(decoder_.character(0x2011));
            break;
        case '\n':
            breakHere(Break::kParagraph);
            break;
        default:
            break;  // \- (optional hyphen), \: (index entry), \| (formula), ...
    }
}

void DocumentReader::controlWord(const ControlWord& word) {
    if (!reading()) return;
    bool isRtf = !word.overlong && word.name == "rtf";
    noteFirstToken(isRtf);
    bool marked = destinationMark_;
    destinationMark_ = false;
    if (skippedAsFallback()) return;
    KeywordInfo keyword = word.overlong ? KeywordInfo{} : lookupKeyword(word.name);
    if (keyword.keyword != Keyword::kUnicode) flushDecoder();
    GroupState& state = stack_.back();
    if (state.destination == Destination::kSkip) {
        if (keyword.keyword == Keyword::kUnicodeDestination &&
            state.unicodePairResume != Destination::kSkip) {
            state.destination = state.unicodePairResume;
        }
        return;
    }
    if (marked && !readableAfterMark(keyword.keyword)) {
        skipGroup(state);
        return;
    }
    if (state.destination == Destination::kFontTable) {
        switch (keyword.keyword) {
            case Keyword::kFont: fonts_.startFont(word.parameter); break;
            case Keyword::kFontCharset: fonts_.setCharset(word.parameter); break;
            case Keyword::kFontCodePage: fonts_.setCodePage(word.parameter); break;
            case Keyword::kIgnoredDestination: skipGroup(state); break;
            default: return;
        }
        fontsChanged();
        return;
    }
    wordInBody(word, keyword, state);
}

// A control word in a destination that holds text: the body, an HTML tag or
// a field instruction.
void DocumentReader::wordInBody(const ControlWord& word, const KeywordInfo& keyword,
                                GroupState& state) {
    bool on = switchedOn(word);
    switch (keyword.keyword) {
        case Keyword::kAnsi:
        case Keyword::kMac:
        case Keyword::kPc:
        case Keyword::kPca:
            // The character set of the document, unless \ansicpg names its
            // code page.
            if (!documentCodePageSet_) {
                fonts_.setDocumentCodePage(keyword.keyword == Keyword::kMac   ? 10000
                                           : keyword.keyword == Keyword::kPc  ? 437
                                           : keyword.keyword == Keyword::kPca ? 850
                                                                              : 1252);
                fontsChanged();
            }
            break;
        case Keyword::kAnsiCodePage:
            if (word.parameter > 0) {
                fonts_.setDocumentCodePage(static_cast<uint32_t>(word.parameter));
                documentCodePageSet_ = true;
                fontsChanged();
            }
            break;
        case Keyword::kDefaultFont:
            fonts_.setDefaultFont(word.parameter);
            fontsChanged();
            break;
        case Keyword::kFromHtml:
            if (encapsulation_ == Encapsulation::kUnknown && on) declared_ = Encapsulation::kHtml;
            break;
        case Keyword::kFromText:
            if (encapsulation_ == Encapsulation::kUnknown && declared_ == Encapsulation::kNone) {
                declared_ = Encapsulation::kText;
            }
            break;
        case Keyword::kFontTable:
            state.destination = Destination::kFontTable;
            break;
        case Keyword::kFont:
            state.font = word.parameter;
            break;
        case Keyword::kIgnoredDestination:
            skipGroup(state);
            break;
        case Keyword::kField:
            if (state.destination == Destination::kBody) openField();
            break;
        case Keyword::kFieldInstruction:
            if (state.destination == Destination::kBody && !fields_.empty() &&
                fields_.back().depth + 1 == stack_.size()) {
                state.destination = Destination::kFieldInstruction;
            } else {
                skipGroup(state);
            }
            break;
        case Keyword::kFieldResult:
            if (state.destination == Destination::kBody && !fields_.empty() &&
                fields_.back().depth + 1 == stack_.size() && !fields_.back().resultStarted) {
                startFieldResult();
            }
            break;
        case Keyword::kHtmlTag:
            if (rules_.htmlTags) {
                state.destination = Destination::kHtmlTag;
            } else {
                skipGroup(state);
            }
            break;
        case Keyword::kUnicodePair:
            state.unicodePairResume = state.destination;
            state.destination = Destination::kSkip;
            break;
        case Keyword::kHtmlRtf: state.htmlRtf = on; break;
        case Keyword::kParagraph: breakHere(Break::kParagraph); break;
        case Keyword::kLine:
        case Keyword::kNestedRow: breakHere(Break::kLine); break;
        case Keyword::kCell: breakHere(Break::kCell); break;
        case Keyword::kRow: breakHere(Break::kRow); break;
        case Keyword::kTab:
        case Keyword::kNestedCell:
            if (receivesText(state)) deliver(decoder_.character('\t'));
            break;
        case Keyword::kBold: state.bold = on; break;
        case Keyword::kItalic: state.italic = on; break;
        case Keyword::kUnderline: state.underline = on; break;
        case Keyword::kUnderlineNone: state.underline = false; break;
        case Keyword::kHidden: state.hidden = on; break;
        case Keyword::kPlain:
            state.bold = state.italic = state.underline = state.hidden = false;
            state.font = -1;
            break;
        case Keyword::kParagraphDefaults: state.inTable = false; break;
        case Keyword::kInTable: state.inTable = true; break;
        case Keyword::kTableLevel: state.inTable = word.parameter > 0; break;
        case Keyword::kUnicode:
            if (receivesText(state)) deliver(decoder_.codeUnit(static_cast<uint16_t>(word.parameter)));
            fallbackLeft_ = state.unicodeSkip;
            break;
        case Keyword::kUnicodeSkip: state.unicodeSkip = std::max(word.parameter, 0); break;
        case Keyword::kCharacter:
            if (receivesText(state)) deliver(decoder_.character(keyword.character));
            break;
        default:
            break;  // \rtf, \ud outside \upr, list text, and every word without a meaning here
    }
}

void DocumentReader::openField() {
    if (!fields_.empty() && fields_.back().depth == stack_.size()) {
        if (fields_.back().link) sink_->linkEnd();
        fields_.back() = Field{stack_.size()};
        return;
    }
    fields_.push_back(Field{stack_.size()});
}

void DocumentReader::startFieldResult() {
    Field& field = fields_.back();
    field.resultStarted = true;
    std::string target = hyperlinkTarget(field.instruction);
    if (target.empty()) return;
    decide();
    sink_->linkStart(target);
    field.link = true;
}

void DocumentReader::closeFieldsFrom(size_t depth) {
    while (!fields_.empty() && fields_.back().depth >= depth) {
        if (fields_.back().link) sink_->linkEnd();
        fields_.pop_back();
    }
}

void DocumentReader::finish() {
    if (reading()) flushDecoder();
    decide();
    closeFieldsFrom(0);
    sink_->finish();
}

}  // namespace tnefrtf
