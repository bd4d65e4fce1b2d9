#include "client/html_text/text_layout.h"

#include <algorithm>

namespace tnefclient {

namespace {

enum class Kind { kInline, kBlock, kHidden, kPreformatted, kBreak, kTable, kRow, kCell, kLink };

struct ElementRule {
    std::string_view name;
    Kind kind;
};

constexpr ElementRule kRules[] = {
    {"a", Kind::kLink},           {"br", Kind::kBreak},          {"p", Kind::kBlock},
    {"head", Kind::kHidden},      {"script", Kind::kHidden},     {"style", Kind::kHidden},
    {"template", Kind::kHidden},  {"title", Kind::kHidden},      {"pre", Kind::kPreformatted},
    {"textarea", Kind::kPreformatted}, {"listing", Kind::kPreformatted},
    {"xmp", Kind::kPreformatted}, {"plaintext", Kind::kPreformatted},
    {"table", Kind::kTable},      {"tr", Kind::kRow},            {"td", Kind::kCell},
    {"th", Kind::kCell},          {"address", Kind::kBlock},     {"article", Kind::kBlock},
    {"aside", Kind::kBlock},      {"blockquote", Kind::kBlock},  {"body", Kind::kBlock},
    {"caption", Kind::kBlock},    {"center", Kind::kBlock},      {"dd", Kind::kBlock},
    {"details", Kind::kBlock},    {"dialog", Kind::kBlock},      {"dir", Kind::kBlock},
    {"div", Kind::kBlock},        {"dl", Kind::kBlock},          {"dt", Kind::kBlock},
    {"fieldset", Kind::kBlock},   {"figcaption", Kind::kBlock},  {"figure", Kind::kBlock},
    {"footer", Kind::kBlock},     {"form", Kind::kBlock},        {"h1", Kind::kBlock},
    {"h2", Kind::kBlock},         {"h3", Kind::kBlock},          {"h4", Kind::kBlock},
    {"h5", Kind::kBlock},         {"h6", Kind::kBlock},          {"header", Kind::kBlock},
    {"hgroup", Kind::kBlock},     {"hr", Kind::kBlock},          {"html", Kind::kBlock},
    {"legend", Kind::kBlock},     {"li", Kind::kBlock},          {"main", Kind::kBlock},
    {"menu", Kind::kBlock},       {"nav", Kind::kBlock},         {"ol", Kind::kBlock},
    {"section", Kind::kBlock},    {"summary", Kind::kBlock},     {"ul", Kind::kBlock},
};

Kind kindOf(std::string_view name) {
    for (const ElementRule& rule : kRules) {
        if (rule.name == name) return rule.kind;
    }
    return Kind::kInline;
}

// How much of a link's text is kept to compare with its target.
constexpr size_t kLinkTextKept = 2048;

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

// A link's target as a browser reads the attribute: tabs and line ends
// taken out, spaces at its ends too.
std::string linkTarget(std::string_view href) {
    std::string target;
    for (char c : trimmed(href)) {
        if (c != '\t' && c != '\n' && c != '\r') target += c;
    }
    return target;
}

// Whether a link's text shows its target: the same but for the scheme of
// a mail, phone or web address and a closing slash.
bool sameAddress(std::string_view target, std::string_view shown) {
    auto bare = [](std::string_view address) {
        for (std::string_view scheme : {"mailto:", "tel:", "http://", "https://"}) {
            if (address.substr(0, scheme.size()) == scheme) {
                address.remove_prefix(scheme.size());
                break;
            }
        }
        if (!address.empty() && address.back() == '/') address.remove_suffix(1);
        return address;
    };
    return bare(target) == bare(shown);
}

}  // namespace

void TextLayout::startElement(std::string_view name, std::string_view href) {
    Kind kind = kindOf(name);
    if (kind == Kind::kHidden) {
        ++hidden_;
        return;
    }
    if (hidden_ > 0) return;
    switch (kind) {
        case Kind::kBlock: lineBreaks(1); break;
        case Kind::kPreformatted:
            lineBreaks(1);
            ++preformatted_;
            break;
        case Kind::kBreak: endLine(); break;
        case Kind::kTable:
            lineBreaks(1);
            cells_.push_back(0);
            break;
        case Kind::kRow:
            lineBreaks(1);
            if (!cells_.empty()) cells_.back() = 0;
            break;
        case Kind::kCell:
            if (!cells_.empty() && cells_.back()++ > 0) content("\t");
            break;
        case Kind::kLink: links_.push_back({linkTarget(href), {}}); break;
        default: break;
    }
}

void TextLayout::endElement(std::string_view name) {
    Kind kind = kindOf(name);
    if (kind == Kind::kHidden) {
        if (hidden_ > 0) --hidden_;
        return;
    }
    if (hidden_ > 0) return;
    switch (kind) {
        case Kind::kBlock:
        case Kind::kRow: lineBreaks(1); break;
        case Kind::kPreformatted:
            if (preformatted_ > 0) --preformatted_;
            lineBreaks(1);
            break;
        case Kind::kTable:
            if (!cells_.empty()) cells_.pop_back();
            lineBreaks(1);
            break;
        case Kind::kLink:
            if (!links_.empty()) closeLink();
            break;
        default: break;
    }
}

void TextLayout::characters(std::string_view text) {
    if (hidden_ > 0) return;
    if (preformatted_ > 0) {
        preformattedText(text);
    } else {
        flowingText(text);
    }
}

bool TextLayout::finish() {
    while (!links_.empty()) closeLink();
    if (started_) out_.append("\r\n");
    out_.flush();
    return !out_.failed();
}

void TextLayout::lineBreaks(int count) {
    pendingBreaks_ = std::max(pendingBreaks_, count);
    space_ = false;
}

void TextLayout::beforeContent() {
    if (started_ && (pendingBreaks_ > 0 || space_)) {
        for (int i = 0; i < pendingBreaks_; ++i) out_.append("\r\n");
        if (pendingBreaks_ == 0) out_.append(' ');
        noteLinkText(" ");
    }
    pendingBreaks_ = 0;
    space_ = false;
}

void TextLayout::content(std::string_view text) {
    beforeContent();
    out_.append(text);
    noteLinkText(text);
    started_ = true;
}

void TextLayout::endLine() {
    if (!started_) return;
    ++pendingBreaks_;
    space_ = false;
}

void TextLayout::noteLinkText(std::string_view text) {
    for (Link& link : links_) {
        if (link.text.size() < kLinkTextKept) link.text.append(text.substr(0, kLinkTextKept));
    }
}

void TextLayout::flowingText(std::string_view text) {
    static constexpr std::string_view kNoBreakSpace = "\xC2\xA0";
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        bool space = i < text.size() && isSpace(text[i]);
        bool noBreak = text.substr(i, kNoBreakSpace.size()) == kNoBreakSpace;
        if (i < text.size() && !space && !noBreak) continue;
        if (i > start) content(text.substr(start, i - start));
        if (space && started_ && pendingBreaks_ == 0) space_ = true;
        if (noBreak) {
            content(" ");
            ++i;
        }
        start = i + 1;
    }
}

void TextLayout::preformattedText(std::string_view text) {
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != '\r' && text[i] != '\n') continue;
        if (i > start) content(text.substr(start, i - start));
        if (i < text.size() && text[i] == '\n') endLine();
        start = i + 1;
    }
}

void TextLayout::closeLink() {
    Link link = std::move(links_.back());
    links_.pop_back();
    const std::string& target = link.target;
    std::string_view shown = trimmed(link.text);
    if (target.empty() || target[0] == '#' || sameAddress(target, shown)) return;
    if (!shown.empty() && pendingBreaks_ == 0) space_ = true;
    content("[" + target + "]");
}

}  // namespace tnefclient
