#include "client/html_text/html_text.h"

#include <libxml/HTMLparser.h>
#include <libxml/parserInternals.h>

#include <climits>
#include <cstring>
#include <mutex>
#include <string>

#include "client/html_text/text_layout.h"

namespace tnefclient {

namespace {

// The parser is given the document in pieces of at most this size.
constexpr size_t kChunkBytes = 1 << 20;
// The longest tag that waits to be given to the parser whole.
constexpr size_t kLongestTag = 64 * 1024;

std::string_view nameOf(const xmlChar* name) {
    return name == nullptr ? std::string_view() : reinterpret_cast<const char*>(name);
}

class LibxmlHtmlText final : public HtmlTextConverter {
public:
    LibxmlHtmlText(tnefrtf::OutputSink& text, std::string_view charset);
    ~LibxmlHtmlText() override {
        if (parser_ != nullptr) htmlFreeParserCtxt(parser_);
    }

    bool write(std::string_view html) override;
    bool finish() override;

private:
    void parse(std::string_view html);
    static LibxmlHtmlText* self(void* context) {
        auto* parser = static_cast<htmlParserCtxtPtr>(context);
        return static_cast<LibxmlHtmlText*>(parser->_private);
    }
    static void startElement(void* context, const xmlChar* name, const xmlChar** attributes);
    static void endElement(void* context, const xmlChar* name) {
        self(context)->layout_.endElement(nameOf(name));
    }
    static void characters(void* context, const xmlChar* text, int length) {
        if (length > 0) {
            self(context)->layout_.characters(
                std::string_view(reinterpret_cast<const char*>(text), static_cast<size_t>(length)));
        }
    }
    static void ignoreError(void*, xmlErrorPtr) {}

    TextLayout layout_;
    std::string waiting_;  // the start of a tag that a write cut
    htmlSAXHandler handler_{};
    htmlParserCtxtPtr parser_ = nullptr;
};

void LibxmlHtmlText::startElement(void* context, const xmlChar* name, const xmlChar** attributes) {
    std::string_view href;
    for (const xmlChar** at = attributes; at != nullptr && at[0] != nullptr; at += 2) {
        if (nameOf(at[0]) == "href" && at[1] != nullptr) href = nameOf(at[1]);
    }
    self(context)->layout_.startElement(nameOf(name), href);
}

LibxmlHtmlText::LibxmlHtmlText(tnefrtf::OutputSink& text, std::string_view charset) : layout_(text) {
    static std::once_flag initialized;
    std::call_once(initialized, [] { xmlInitParser(); });
    handler_.startElement = &LibxmlHtmlText::startElement;
    handler_.endElement = &LibxmlHtmlText::endElement;
    handler_.characters = &LibxmlHtmlText::characters;
    handler_.cdataBlock = &LibxmlHtmlText::characters;
    handler_.ignorableWhitespace = &LibxmlHtmlText::characters;
    // Errors in the document are the rule in mail, never worth a word.
    handler_.serror = &LibxmlHtmlText::ignoreError;
    handler_.initialized = XML_SAX2_MAGIC;
    xmlCharEncodingHandlerPtr encoding = nullptr;
    if (!charset.empty()) encoding = xmlFindCharEncodingHandler(std::string(charset).c_str());
    parser_ = htmlCreatePushParserCtxt(&handler_, nullptr, nullptr, 0, nullptr,
                                       XML_CHAR_ENCODING_NONE);
    if (parser_ == nullptr) {
        if (encoding != nullptr) xmlCharEncCloseFunc(encoding);
        return;
    }
    parser_->_private = this;
    int options = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET;
    if (encoding != nullptr) {
        // The charset given holds over what the document says of itself.
        xmlSwitchToEncoding(parser_, encoding);
        options |= HTML_PARSE_IGNORE_ENC;
    }
    htmlCtxtUseOptions(parser_, options);
}

void LibxmlHtmlText::parse(std::string_view html) {
    while (parser_ != nullptr && !html.empty()) {
        size_t count = std::min(html.size(), kChunkBytes);
        htmlParseChunk(parser_, html.data(), static_cast<int>(count), 0);
        html.remove_prefix(count);
    }
}

// libxml2's push parser (2.9) reads the end tag of a script or a style that
// a piece of input cuts ("</sty", "le>") as text of the script, and all that
// follows with it. So it is only given pieces that end outside a tag: from
// the last '<' that no '>' follows, the input waits for the next write (up
// to the longest tag, past which it goes on as it is).
bool LibxmlHtmlText::write(std::string_view html) {
    waiting_.append(html);
    size_t open = waiting_.rfind('<');
    size_t cut = waiting_.size();
    if (open != std::string::npos && waiting_.find('>', open) == std::string::npos &&
        waiting_.size() - open <= kLongestTag) {
        cut = open;
    }
    parse(std::string_view(waiting_).substr(0, cut));
    waiting_.erase(0, cut);
    return parser_ != nullptr && !layout_.failed();
}

bool LibxmlHtmlText::finish() {
    if (parser_ == nullptr) return false;
    parse(waiting_);
    waiting_.clear();
    htmlParseChunk(parser_, nullptr, 0, 1);
    return layout_.finish();
}

}  // namespace

std::unique_ptr<HtmlTextConverter> libxmlHtmlToText(tnefrtf::OutputSink& text,
                                                    std::string_view charset) {
    return std::make_unique<LibxmlHtmlText>(text, charset);
}

}  // namespace tnefclient
