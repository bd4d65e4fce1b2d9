// The HTML summary header, line by line. 16-bit text goes out as numeric
// character references, one per unit, so that it needs no charset at all;
// 8-bit text goes out in the message's charset, which the head declares,
// made safe for HTML by the host when the host can do that.
#include "render/html_summary_field.h"

#include "reader/charset_names.h"
#include "reader/memory.h"
#include "reader/sizes.h"
#include "render/plain_message.h"
#include "render/summary_line.h"

namespace {

constexpr const char* kHeadBeforeCharset =
    "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html; charset=";
constexpr const char* kHeadAfterCharset =
    "\" /></head>\r\n<body>\r\n<p><font face=\"Arial Unicode MS\" size=2>\r\n";
constexpr const char* kHeadWithoutCharset =
    "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html\" /></head>\r\n"
    "<body>\r\n<p><font face=\"Arial Unicode MS\" size=2>\r\n";
constexpr const char* kClosingText = "</font></p>\r\n</body>\r\n</html>\r\n";
constexpr const char* kLineEnd = "<br>\r\n";

// The name of a charset the head can declare: the table's name of an id
// from 1 to 94 that has one, other than the 16-bit charset, which the text
// of the document never is.
const char* declarableName(CharsetId id) {
    if (id < 1 || id > kCharsetNameCount || id == kCharsetUnicode) return nullptr;
    const char* name = tnefCharsetName(id);
    return name[0] != '\0' ? name : nullptr;
}

void writeHead(TnefObject* object, IoObject* output) {
    const char* name = declarableName(object->declaredCharset);
    if (name == nullptr) name = declarableName(object->charset);
    if (name == nullptr) {
        tnefWriteText(output, kHeadWithoutCharset);
        return;
    }
    tnefWriteText(output, kHeadBeforeCharset);
    tnefWriteText(output, name);
    tnefWriteText(output, kHeadAfterCharset);
}

// 16-bit text as "&#N" per unit, with no semicolon; a last odd byte is left
// out, and the halves of a surrogate pair stay two numbers.
void appendReferences(SummaryLine* line, const uint8_t* text, int32_t size) {
    for (int32_t at = 0; at + 1 < size; at += 2) {
        unsigned unit = static_cast<unsigned>(text[at]) | (static_cast<unsigned>(text[at + 1]) << 8);
        tnefLineAppendf(line, "&#%u", unit);
        tnefLineFlushIfFull(line);
    }
}

// 8-bit text through the host's HTML transformation in the object's
// charset; as it is when the host has none. A failure loses the text.
void writeNarrowValue(TnefContainer* container, TnefObject* object, const uint8_t* text,
                      int32_t size, IoObject* output) {
    HostContext* host = container->host;
    if (host->hostTransformText == nullptr) {
        tnefWriteRaw(output, text, size);
        return;
    }
    HostAllocator* allocator = tnefHostAllocator(container);
    int32_t capacity = tnefSizeMul(size, 2);
    auto* buffer = static_cast<uint8_t*>(tnefAlloc(allocator, tnefSizeAdd(tnefSizeMul(size, 4), 2)));
    if (buffer == nullptr) return;
    CharsetId saved = host->currentCharset;
    host->currentCharset = object->charset;
    HostText source{text, size};
    HostTextBuffer target{buffer, capacity};
    if (host->hostTransformText(host, &source, &target, 0) != 0 && target.length <= capacity) {
        tnefWriteRaw(output, buffer, target.length);
    }
    tnefFree(allocator, buffer);
    host->currentCharset = saved;
}

void writeTextLine(TnefContainer* container, TnefObject* object, int32_t index,
                   IoObject* output) {
    MetaElement* element = tnefSummaryTextElement(container, index);
    if (element == nullptr) return;
    if (element->type == kElementText16) {
        SummaryLine line;
        tnefLineStart(&line, output);
        tnefLineAppendf(&line, "<b>%s</b>", kSummaryLabels[index]);
        if (tnefTrimWideElement(element) == 0) {
            tnefLineDiscard(&line);
        } else {
            appendReferences(&line, tnefTextBytes(element), element->size);
            tnefLineFlush(&line);
        }
        tnefWriteText(output, kLineEnd);
    } else if (element->type == kElementText8) {
        if (tnefTrimNarrowElement(element) > 0) {
            tnefWriteFormatted(output, "<b>%s</b>", kSummaryLabels[index]);
            writeNarrowValue(container, object, tnefTextBytes(element), element->size, output);
        }
        tnefWriteText(output, kLineEnd);
    }
}

void writeSentLine(TnefContainer* container, IoObject* output) {
    char date[kTnefDateTextSize];
    if (!tnefSummarySentText(container, date)) return;
    tnefWriteFormatted(output, "<b>%s</b>%s<br>\r\n", kSummaryLabels[kSummaryFieldSent], date);
}

// Without attachments the Importance line also closes the document, and
// the Attachments line closes it once more.
void writeImportanceLine(TnefContainer* container, IoObject* output) {
    const char* word = tnefSummaryImportanceWord(container);
    if (word == nullptr) return;
    const char* label = kSummaryLabels[kSummaryFieldImportance];
    if (container->objectCount <= 1) {
        tnefWriteFormatted(output, "<b>%s</b>%s<br>\r\n%s", label, word, kClosingText);
    } else {
        tnefWriteFormatted(output, "<b>%s</b>%s<br>\r\n", label, word);
    }
}

// The label before the first name, the separator before the others; bold
// before a 16-bit name only.
void writeAttachmentName(void* state, const SummaryAttachmentName* name) {
    auto* output = static_cast<IoObject*>(state);
    const char* pair = name->first ? kSummaryLabels[kSummaryFieldAttachments] : kSummaryNameSeparator;
    if (name->form == SummaryNameForm::kWide) {
        SummaryLine line;
        tnefLineStart(&line, output);
        tnefLineAppendf(&line, "<b>%s</b>", pair);
        appendReferences(&line, name->bytes, name->size);
        tnefLineFlush(&line);
        return;
    }
    if (name->first) {
        tnefWriteFormatted(output, "<b>%s</b>", pair);
    } else {
        tnefWriteText(output, pair);
    }
    tnefWriteRaw(output, name->bytes, name->size);
}

void writeAttachmentsLine(TnefContainer* container, IoObject* output) {
    tnefWalkAttachmentNames(container, writeAttachmentName, output);
    tnefWriteText(output, kClosingText);
}

}  // namespace

int32_t tnefWriteHtmlSummaryField(TnefContainer* container, TnefObject* object, int32_t index,
                                  IoObject* output) {
    switch (index) {
        case kSummaryFieldFrom:
            writeHead(object, output);
            writeTextLine(container, object, index, output);
            break;
        case kSummaryFieldTo:
        case kSummaryFieldCc:
        case kSummaryFieldBcc:
        case kSummaryFieldSubject:
            writeTextLine(container, object, index, output);
            break;
        case kSummaryFieldSent:
            writeSentLine(container, output);
            break;
        case kSummaryFieldImportance:
            writeImportanceLine(container, output);
            break;
        case kSummaryFieldAttachments:
            writeAttachmentsLine(container, output);
            break;
        default:
            break;
    }
    return kTnefOk;
}
