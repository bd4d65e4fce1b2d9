// The RTF summary header, line by line. All text goes out in one charset,
// the one the head declares: 16-bit text is converted to it one unit at a
// time, and a character that it writes in two bytes or lacks altogether is
// also given as a \u number, for readers that know Unicode.
#include "render/rtf_summary_field.h"

#include "reader/bytes.h"
#include "render/plain_message.h"
#include "render/summary_line.h"

namespace {

constexpr const char* kLabelFormat = "\\b %s\\b0 ";
constexpr const char* kLineEnd = "\\par ";

// The code page and font charset the head declares for a charset.
struct RtfCodePage {
    int32_t codePage;
    int32_t fontCharset;
};

// Charsets 1 to 13: the four double-byte code pages, then 1250 to 1258.
constexpr RtfCodePage kCodePages[] = {
    {932, 128}, {936, 134}, {950, 136}, {949, 129}, {1250, 0}, {1251, 0}, {1252, 0},
    {1253, 0},  {1254, 0},  {1255, 0},  {1256, 0},  {1257, 0}, {1258, 0},
};
constexpr int32_t kCodePageCount = sizeof kCodePages / sizeof kCodePages[0];
constexpr RtfCodePage kOtherCodePage = {1252, 0};

RtfCodePage codePageOf(CharsetId cs) {
    return cs >= 1 && cs <= kCodePageCount ? kCodePages[cs - 1] : kOtherCodePage;
}

// Room for what one unit converts to.
enum : int32_t { kUnitResultSize = 10 };

struct RtfField {
    HostContext* host;
    CharsetId cs;
    // "\uc2" (two bytes stand for each \u number) goes out once per call.
    bool unicodeCountDone;
    SummaryLine line;
};

// The object's charset, or the host's default when the object has none or
// holds 16-bit strings. currentCharset is left as it was.
CharsetId workingCharset(HostContext* host, const TnefObject* object) {
    if (object->charset != kCharsetNone && object->charset != kCharsetUnicode) {
        return object->charset;
    }
    CharsetId saved = host->currentCharset;
    host->currentCharset = kCharsetNone;
    if (host->hostSetDefaultCharset != nullptr) host->hostSetDefaultCharset(host, 0);
    CharsetId cs = host->currentCharset;
    host->currentCharset = saved;
    return cs;
}

bool isLeadByte(RtfField* field, uint8_t byte) {
    HostContext* host = field->host;
    return host->hostIsLeadByte != nullptr && host->hostIsLeadByte(host, byte, field->cs) != 0;
}

// One byte of text; the three characters RTF reserves get a backslash.
void appendTextByte(RtfField* field, uint8_t byte) {
    if (byte == '\\' || byte == '{' || byte == '}') tnefLineAppend(&field->line, "\\", 1);
    tnefLineAppend(&field->line, &byte, 1);
}

const char* unicodeCountWord(RtfField* field) {
    const char* word = field->unicodeCountDone ? "" : "\\uc2";
    field->unicodeCountDone = true;
    return word;
}

// One 16-bit unit in the working charset. False when the host could not
// convert it, which drops it.
bool appendUnit(RtfField* field, const uint8_t* unitBytes) {
    HostContext* host = field->host;
    if (host->hostUnicodeToCharset == nullptr) return false;
    uint8_t result[kUnitResultSize] = {};
    HostText source{unitBytes, 2};
    HostTextBuffer target{result, kUnitResultSize};
    if (host->hostUnicodeToCharset(host, &source, &target, '?', 0) == 0 || target.length <= 0) {
        return false;
    }
    // \u takes a signed 16-bit number.
    const int unit = static_cast<int16_t>(tnefLe16(unitBytes));
    if (isLeadByte(field, result[0])) {
        tnefLineAppendf(&field->line, "%s\\u%d\\'%.2x\\'%.2x", unicodeCountWord(field), unit,
                        result[0], result[1]);
    } else if (target.length == 1 && result[0] == '?') {
        tnefLineAppendf(&field->line, "%s\\u%d ? ", unicodeCountWord(field), unit);
    } else {
        appendTextByte(field, result[0]);
    }
    return true;
}

void appendWideText(RtfField* field, const uint8_t* text, int32_t size) {
    HostContext* host = field->host;
    CharsetId saved = host->currentCharset;
    host->currentCharset = field->cs;
    for (int32_t at = 0; size - at >= 2; at += 2) {
        if (appendUnit(field, text + at)) tnefLineFlushIfFull(&field->line);
    }
    host->currentCharset = saved;
}

// 8-bit text is in the working charset already: a two-byte character goes
// out as two hexadecimal escapes, a lead byte with nothing behind it as a
// plain byte.
void appendNarrowText(RtfField* field, const uint8_t* text, int32_t size) {
    for (int32_t at = 0; at < size;) {
        if (isLeadByte(field, text[at]) && size - at >= 2) {
            tnefLineAppendf(&field->line, "\\'%.2x\\'%.2x", text[at], text[at + 1]);
            at += 2;
        } else {
            appendTextByte(field, text[at]);
            at += 1;
        }
        tnefLineFlushIfFull(&field->line);
    }
}

void writeHead(RtfField* field) {
    RtfCodePage page = codePageOf(field->cs);
    tnefWriteFormatted(field->line.output,
                       "{\\rtf1\\ansi\\ansicpg%d\\deff0 {\\fonttbl{\\f0\\fcharset%d %s;}}\\f0\\fs20",
                       page.codePage, page.fontCharset, "Arial Unicode MS");
}

// An empty 16-bit value writes nothing at all; an empty 8-bit value still
// writes its label and line end.
void writeTextLine(RtfField* field, TnefContainer* container, int32_t index) {
    MetaElement* element = tnefSummaryTextElement(container, index);
    if (element == nullptr) return;
    if (element->type != kElementText16 && element->type != kElementText8) return;
    tnefLineAppendf(&field->line, kLabelFormat, kSummaryLabels[index]);
    if (element->type == kElementText16) {
        if (tnefTrimWideElement(element) < 1) {
            tnefLineDiscard(&field->line);
            return;
        }
        appendWideText(field, tnefTextBytes(element), element->size);
    } else {
        tnefTrimNarrowElement(element);
        appendNarrowText(field, tnefTextBytes(element), element->size);
    }
    tnefLineAppendText(&field->line, kLineEnd);
    tnefLineFlush(&field->line);
}

void writeSentLine(RtfField* field, TnefContainer* container) {
    char date[kTnefDateTextSize];
    if (!tnefSummarySentText(container, date)) return;
    tnefWriteFormatted(field->line.output, "\\b %s\\b0 %s\\par ",
                       kSummaryLabels[kSummaryFieldSent], date);
}

// Without attachments the line ends in an empty paragraph as well.
void writeImportanceLine(RtfField* field, TnefContainer* container) {
    const char* word = tnefSummaryImportanceWord(container);
    if (word == nullptr) return;
    const char* format = container->objectCount <= 1 ? "\\b %s\\b0 %s\\par\\par" : "\\b %s\\b0 %s\\par";
    tnefWriteFormatted(field->line.output, format, kSummaryLabels[kSummaryFieldImportance], word);
}

// The label before the first name, a plain separator before the others.
void writeAttachmentName(void* state, const SummaryAttachmentName* name) {
    auto* field = static_cast<RtfField*>(state);
    if (name->first) {
        tnefLineAppendf(&field->line, kLabelFormat, kSummaryLabels[kSummaryFieldAttachments]);
    } else {
        tnefLineAppendText(&field->line, kSummaryNameSeparator);
    }
    switch (name->form) {
        case SummaryNameForm::kWide:
            appendWideText(field, name->bytes, name->size);
            tnefLineFlush(&field->line);
            break;
        case SummaryNameForm::kNarrow:
            appendNarrowText(field, name->bytes, name->size);
            tnefLineFlush(&field->line);
            break;
        case SummaryNameForm::kVerbatim:
            // Titles and generated names are written as they are, unescaped.
            tnefLineFlush(&field->line);
            tnefWriteRaw(field->line.output, name->bytes, name->size);
            break;
    }
}

void writeAttachmentsLine(RtfField* field, TnefContainer* container) {
    tnefWalkAttachmentNames(container, writeAttachmentName, field);
    tnefLineAppendText(&field->line, kLineEnd);
    tnefLineAppendText(&field->line, kLineEnd);
    tnefLineFlush(&field->line);
}

}  // namespace

int32_t tnefWriteRtfSummaryField(TnefContainer* container, TnefObject* object, int32_t index,
                                 IoObject* output) {
    RtfField field;
    field.host = container->host;
    field.cs = workingCharset(container->host, object);
    field.unicodeCountDone = false;
    tnefLineStart(&field.line, output);
    switch (index) {
        case kSummaryFieldFrom:
            writeHead(&field);
            writeTextLine(&field, container, index);
            break;
        case kSummaryFieldTo:
        case kSummaryFieldCc:
        case kSummaryFieldBcc:
        case kSummaryFieldSubject:
            writeTextLine(&field, container, index);
            break;
        case kSummaryFieldSent:
            writeSentLine(&field, container);
            break;
        case kSummaryFieldImportance:
            writeImportanceLine(&field, container);
            break;
        case kSummaryFieldAttachments:
            writeAttachmentsLine(&field, container);
            break;
        default:
            break;
    }
    return kTnefOk;
}
