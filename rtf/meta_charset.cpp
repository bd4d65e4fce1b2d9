#include "rtf/meta_charset.h"

#include <cstring>
#include <vector>

namespace tnefrtf {

namespace {

// Longer than any <meta> tag a mail client writes.
constexpr size_t kMaxMetaTag = 4096;

char asciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f'; }

bool sameLetters(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (asciiLower(a[i]) != asciiLower(b[i])) return false;
    }
    return true;
}

// Where, inside a content attribute's value, the charset name stands
// ("text/html; charset=windows-1252"); npos when it names none.
std::pair<size_t, size_t> charsetInContent(std::string_view value) {
    for (size_t at = 0; at + 7 <= value.size(); ++at) {
        if (!sameLetters(value.substr(at, 7), "charset")) continue;
        size_t i = at + 7;
        while (i < value.size() && isSpace(value[i])) ++i;
        if (i == value.size() || value[i] != '=') continue;
        ++i;
        while (i < value.size() && isSpace(value[i])) ++i;
        if (i < value.size() && (value[i] == '"' || value[i] == '\'')) ++i;
        size_t end = i;
        while (end < value.size() && !isSpace(value[end]) && value[end] != ';' && value[end] != '"' &&
               value[end] != '\'') {
            ++end;
        }
        return {i, end};
    }
    return {std::string_view::npos, std::string_view::npos};
}

}  // namespace

std::string rewriteMetaTag(std::string_view tag) {
    // The places of the values to replace, in order.
    std::vector<std::pair<size_t, size_t>> replace;
    size_t i = 5;  // past "<meta"
    while (i < tag.size()) {
        while (i < tag.size() && (isSpace(tag[i]) || tag[i] == '/')) ++i;
        size_t nameStart = i;
        while (i < tag.size() && !isSpace(tag[i]) && tag[i] != '=' && tag[i] != '>' && tag[i] != '/') ++i;
        std::string_view name = tag.substr(nameStart, i - nameStart);
        if (name.empty()) break;
        while (i < tag.size() && isSpace(tag[i])) ++i;
        if (i == tag.size() || tag[i] != '=') continue;
        ++i;
        while (i < tag.size() && isSpace(tag[i])) ++i;
        size_t valueStart = i;
        size_t valueEnd = i;
        if (i < tag.size() && (tag[i] == '"' || tag[i] == '\'')) {
            char quote = tag[i];
            valueStart = ++i;
            while (i < tag.size() && tag[i] != quote) ++i;
            valueEnd = i;
            if (i < tag.size()) ++i;
        } else {
            while (i < tag.size() && !isSpace(tag[i]) && tag[i] != '>') ++i;
            valueEnd = i;
        }
        std::string_view value = tag.substr(valueStart, valueEnd - valueStart);
        if (sameLetters(name, "charset")) {
            replace.emplace_back(valueStart, valueEnd);
        } else if (sameLetters(name, "content")) {
            auto [from, to] = charsetInContent(value);
            if (from != std::string_view::npos) replace.emplace_back(valueStart + from, valueStart + to);
        }
    }
    std::string result;
    size_t copied = 0;
    for (auto [from, to] : replace) {
        result.append(tag.substr(copied, from - copied)).append("utf-8");
        copied = to;
    }
    result.append(tag.substr(copied));
    return result;
}

void MetaCharsetRewriter::write(std::string_view bytes) {
    while (!bytes.empty()) {
        if (state_ == State::kText) {
            size_t open = bytes.find('<');
            out_.append(bytes.substr(0, open));
            if (open == std::string_view::npos) return;
            bytes.remove_prefix(open + 1);
            tag_.clear();
            tag_ += '<';
            state_ = State::kTagName;
            continue;
        }
        char c = bytes.front();
        if (state_ == State::kTagName) {
            // "<meta" and a blank or '/' make a meta tag; anything else is
            // passed on as soon as it differs, and its last byte read again.
            bool meta = tag_.size() < 5 ? asciiLower(c) == "<meta"[tag_.size()] : (isSpace(c) || c == '/');
            if (!meta) {
                passTag();
                continue;
            }
            tag_ += c;
            bytes.remove_prefix(1);
            if (tag_.size() > 5) {
                state_ = State::kMeta;
                quote_ = 0;
            }
            continue;
        }
        tag_ += c;
        bytes.remove_prefix(1);
        if (quote_ != 0) {
            if (c == quote_) quote_ = 0;
        } else if (c == '"' || c == '\'') {
            quote_ = c;
        } else if (c == '>') {
            rewriteMeta();
            continue;
        }
        if (tag_.size() > kMaxMetaTag) passTag();
    }
}

void MetaCharsetRewriter::passTag() {
    out_.append(tag_);
    tag_.clear();
    state_ = State::kText;
}

void MetaCharsetRewriter::rewriteMeta() {
    out_.append(rewriteMetaTag(tag_));
    tag_.clear();
    state_ = State::kText;
}

void MetaCharsetRewriter::finish() {
    if (state_ != State::kText) passTag();
}

}  // namespace tnefrtf
