// The HTML an RTF body encapsulates (\fromhtml1), written back out as it
// was: the tags and the text between them, paragraph marks and line breaks
// as CRLF, in UTF-8, with the charset it declares made utf-8. The reader
// picks the text (tags, and text outside \htmlrtf); this writes it.
#pragma once

#include "rtf/content_sink.h"
#include "rtf/meta_charset.h"

namespace tnefrtf {

class HtmlDeencapsulator final : public ContentSink {
public:
    explicit HtmlDeencapsulator(OutputBuffer& out) : html_(out) {}

    void text(std::string_view utf8, const TextFormat&) override { html_.write(utf8); }
    void breakHere(Break kind, const TextFormat&) override {
        if (kind == Break::kParagraph || kind == Break::kLine) html_.write("\r\n");
    }
    // Links are the HTML's own <a> tags.
    void linkStart(std::string_view) override {}
    void linkEnd() override {}
    void finish() override { html_.finish(); }

private:
    MetaCharsetRewriter html_;
};

}  // namespace tnefrtf
