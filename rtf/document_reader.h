// The document reader: RTF tokens in, the document's text out to a
// ContentSink. It keeps the state of every open group (bounded in depth),
// follows destinations (skipping those that are no text, and every \*
// destination it does not know), reads the font table for code pages,
// decodes characters, skips the fallback of \uN, and reads fields.
//
// Which sink gets the text is decided once the header is read, from the
// encapsulation it declares; the chooser also sets the reading rules.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "rtf/code_pages.h"
#include "rtf/content_sink.h"
#include "rtf/encapsulation.h"
#include "rtf/font_table.h"
#include "rtf/keywords.h"
#include "rtf/text_decoder.h"
#include "rtf/tokenizer.h"

namespace tnefrtf {

// Groups nested deeper than this are read as if they held nothing.
constexpr size_t kMaxGroupDepth = 256;

struct ReadingRules {
    // The content of \*\htmltag groups is text (HTML de-encapsulation);
    // otherwise they are skipped like any other \* destination.
    bool htmlTags = false;
    // Text between \htmlrtf and \htmlrtf0 is left out.
    bool honourHtmlRtf = false;
};

class SinkChooser {
public:
    virtual ~SinkChooser() = default;
    // Called once, before any text: the sink for a document of this
    // encapsulation, and the rules to read it by.
    virtual ContentSink& sinkFor(Encapsulation encapsulation, ReadingRules& rules) = 0;
};

class DocumentReader final : public TokenHandler {
public:
    DocumentReader(SinkChooser& chooser, CodePageDecoder& decoder);

    void groupStart() override;
    void groupEnd() override;
    void controlWord(const ControlWord& word) override;
    void controlSymbol(char symbol) override;
    void hexByte(uint8_t byte) override;
    void text(std::string_view run) override;
    void binary(std::string_view data) override;

    // The input ends: what waits is written, open links are closed, and the
    // sink finishes.
    void finish();

    Encapsulation encapsulation() const { return encapsulation_; }
    // The document's outermost group opened, and closed.
    bool started() const { return started_; }
    bool ended() const { return ended_; }
    // The outermost group starts with \rtf.
    bool rtfHeader() const { return rtfHeader_; }

private:
    enum class Destination : uint8_t { kBody, kSkip, kFontTable, kFieldInstruction, kHtmlTag };

    struct GroupState {
        Destination destination = Destination::kBody;
        // Inside \upr: where its \ud group goes back to; kSkip elsewhere.
        Destination unicodePairResume = Destination::kSkip;
        bool bold = false;
        bool italic = false;
        bool underline = false;
        bool hidden = false;
        bool inTable = false;
        bool htmlRtf = false;
        int32_t font = -1;  // -1: the default font
        int32_t unicodeSkip = 1;
    };

    struct Field {
        size_t depth = 0;  // of the \field group
        std::string instruction;
        bool resultStarted = false;
        bool link = false;
    };

    bool reading() const { return !stack_.empty() && overflowDepth_ == 0; }
    // Whether the token is one the fallback of a \uN swallows.
    bool skippedAsFallback();
    void noteFirstToken(bool isRtfWord);
    void decide();
    void skipGroup(GroupState& state);
    bool receivesText(const GroupState& state);
    uint32_t codePage(const GroupState& state);
    void fontsChanged();
    void deliver(std::string_view utf8);
    void deliverBytes(std::string_view bytes);
    void flushDecoder();
    void breakHere(Break kind);
    void wordInBody(const ControlWord& word, const KeywordInfo& keyword, GroupState& state);
    void openField();
    void startFieldResult();
    void closeFieldsFrom(size_t depth);
    TextFormat formatOf(const GroupState& state) const;

    SinkChooser& chooser_;
    TextDecoder decoder_;
    FontTable fonts_;
    std::vector<GroupState> stack_;
    uint64_t overflowDepth_ = 0;
    std::vector<Field> fields_;
    ContentSink* sink_ = nullptr;
    ReadingRules rules_;
    Encapsulation encapsulation_ = Encapsulation::kUnknown;
    Encapsulation declared_ = Encapsulation::kNone;
    bool started_ = false;
    bool ended_ = false;
    bool rtfHeader_ = false;
    bool expectHeader_ = false;
    bool destinationMark_ = false;  // \* was just read
    bool documentCodePageSet_ = false;
    int64_t fallbackLeft_ = 0;
    // The code page of the last font asked for, until the table changes.
    int32_t cachedFont_ = INT32_MIN;
    uint32_t cachedCodePage_ = 0;
};

}  // namespace tnefrtf
