#include "mail/tnef_to_mime.h"

#include <algorithm>
#include <cctype>

#include "mail/content_types.h"
#include "mail/message_bodies.h"
#include "mail/mime_parts.h"

namespace tnefmail {

using namespace tnefclient;

namespace {

constexpr uint32_t kTagAttachMimeTag16 = 0x370E001F;
constexpr uint32_t kTagAttachMimeTag8 = 0x370E001E;
constexpr uint32_t kTagAttachContentId16 = 0x3712001F;
constexpr uint32_t kTagAttachContentId8 = 0x3712001E;
constexpr size_t kMagicHeadBytes = 8192;

// The first text value among `tags` that the subfile has.
std::optional<std::string> textProperty(Session& session, int32_t index,
                                        const std::vector<uint32_t>& tags) {
    int32_t status = 0;
    for (const Element& element : session.properties(index, tags, &status)) {
        auto text = elementString(session.host(), element, session.messageCharset());
        if (text && !text->empty()) return text;
    }
    return std::nullopt;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// The content ids an HTML body refers to by "cid:" URLs (RFC 2392: %hh
// escapes decoded).
std::vector<std::string> cidReferences(const std::string& html) {
    std::vector<std::string> ids;
    static const std::string_view kStops = "\"'<>() \t\r\n";
    for (size_t at = 0; at + 4 <= html.size(); ++at) {
        if (strncasecmp(html.c_str() + at, "cid:", 4) != 0) continue;
        std::string id;
        size_t i = at + 4;
        for (; i < html.size() && kStops.find(html[i]) == std::string_view::npos; ++i) {
            int high = 0, low = 0;
            if (html[i] == '%' && i + 2 < html.size() && (high = hexValue(html[i + 1])) >= 0 &&
                (low = hexValue(html[i + 2])) >= 0) {
                id += static_cast<char>(high * 16 + low);
                i += 2;
            } else {
                id += html[i];
            }
        }
        if (!id.empty()) ids.push_back(std::move(id));
        at = i - 1;
    }
    return ids;
}

// A subfile the module could name, or one it only could not name: its type
// and place are known either way.
bool described(const SubfileEntry& entry) {
    return entry.status == kTnefOk || entry.status == kTnefNoName;
}

// The message whose body unwrap shows: the first message subfile, named or
// not (a message without a subject has no name); -1 when there is none.
int32_t bodyMessage(const Listing& listing) {
    for (const ListedSubfile& subfile : listing.subfiles) {
        if (described(subfile.entry) && subfile.entry.type == kSubfileMessage) return subfile.entry.index;
    }
    return -1;
}

std::string withoutAngleBrackets(std::string id) {
    if (id.size() >= 2 && id.front() == '<' && id.back() == '>') id = id.substr(1, id.size() - 2);
    return id;
}

}  // namespace

GRef<GMimeObject> ConvertedTnef::body() const {
    if (text && rich) return multipartOf("alternative", {text, rich});
    return text ? text : rich;
}

GRef<GMimeObject> ConvertedTnef::whole() const {
    std::vector<GRef<GMimeObject>> pieces;
    if (GRef<GMimeObject> content = body()) pieces.push_back(content);
    pieces.insert(pieces.end(), attachments.begin(), attachments.end());
    if (pieces.size() <= 1) return pieces.empty() ? GRef<GMimeObject>() : pieces.front();
    return multipartOf("mixed", pieces);
}

GRef<GMimeObject> TnefConverter::textPart(const char* subtype, const std::string& text,
                                          const std::optional<std::string>& charset,
                                          std::string* problem) {
    Slice slice;
    if (!store_.append(text, &slice)) {
        *problem = "cannot write the message body to the scratch file";
        return {};
    }
    return bodyPart(subtype, charset, store_.stream(slice), text);
}

bool TnefConverter::addBodies(Session& session, int32_t message, ConvertedTnef* out,
                              std::vector<std::string>* cids, std::string* problem) {
    MessageBodies bodies;
    if (!readBodies(session, message, &bodies, problem)) return false;
    if (bodies.text) {
        out->text = textPart("plain", *bodies.text, std::string("utf-8"), problem);
        if (!out->text) return false;
    }
    if (bodies.html) {
        *cids = cidReferences(*bodies.html);
        out->rich = textPart("html", *bodies.html, bodies.htmlCharset, problem);
        if (!out->rich) return false;
    }
    return true;
}

bool TnefConverter::addSubfile(Session& session, const ListedSubfile& subfile,
                               const std::vector<std::string>& cids, ConvertedTnef* out,
                               std::vector<GRef<GMimeObject>>* inlined, std::string* problem) {
    const SubfileEntry& entry = subfile.entry;
    std::string where = "subfile " + std::to_string(entry.index);
    if (!described(entry)) {
        *problem = where + " can't be described: " + statusText(entry.status);
        return false;
    }
    if (entry.type != kSubfileAttachment && entry.type != kSubfileOle) return true;
    if (entry.type == kSubfileAttachment && session.holdsEmbeddedMessage(entry.index)) {
        std::string name;
        GRef<GMimeObject> message = embeddedMessage(session, entry.index, &name, problem);
        if (!message) return false;
        setFileName(message.get(), name);
        out->attachments.push_back(std::move(message));
        return true;
    }
    Slice slice;
    ExtractOutcome outcome = store_.extract(session, entry.index, {}, &slice);
    if (outcome.status != kTnefOk) {
        *problem = where + " can't be extracted: " + statusText(outcome.status);
        return false;
    }
    if (outcome.isLink()) {
        out->attachments.push_back(linkPart(outcome.linkedPath.value_or("")));
        return true;
    }
    std::string name = outcome.payloadName.value_or(
        subfile.name.value_or("subfile-" + std::to_string(entry.index)));
    std::optional<std::string> type =
        textProperty(session, entry.index, {kTagAttachMimeTag16, kTagAttachMimeTag8});
    if (!type || !isMimeType(*type)) type = contentTypeFor(name, store_.head(slice, kMagicHeadBytes));
    GRef<GMimeObject> part = attachmentPart(*type, name, store_.stream(slice));
    std::optional<std::string> id =
        textProperty(session, entry.index, {kTagAttachContentId16, kTagAttachContentId8});
    if (id) {
        std::string bare = withoutAngleBrackets(*id);
        g_mime_object_set_content_id(part.get(), bare.c_str());
        if (std::find(cids.begin(), cids.end(), bare) != cids.end()) {
            g_mime_object_set_disposition(part.get(), "inline");
            inlined->push_back(std::move(part));
            return true;
        }
    }
    out->attachments.push_back(std::move(part));
    return true;
}

GRef<GMimeObject> TnefConverter::embeddedMessage(Session& parent, int32_t index, std::string* name,
                                                 std::string* problem) {
    Session nested(parent.module(), parent.host());
    Opened opened = nested.openEmbedded(parent, index, problem);
    if (opened == Opened::kOk && nested.openStatus() != kTnefOk) {
        *problem = "embedded message " + std::to_string(index) + " is damaged: " +
                   statusText(nested.openStatus());
    }
    if (opened != Opened::kOk || !problem->empty()) return {};
    ConvertedTnef content;
    if (!convert(nested, &content, problem)) return {};
    SummaryText summary = readListing(nested).summary;
    *name = summary.subject.value_or("message") + ".eml";
    return messagePart(summary, content.whole());
}

bool TnefConverter::convert(Session& session, ConvertedTnef* out, std::string* problem) {
    Listing listing = readListing(session);
    std::vector<std::string> cids;
    if (!addBodies(session, bodyMessage(listing), out, &cids, problem)) return false;
    std::vector<GRef<GMimeObject>> inlined;
    for (const ListedSubfile& subfile : listing.subfiles) {
        if (!addSubfile(session, subfile, cids, out, &inlined, problem)) return false;
    }
    if (!inlined.empty() && out->rich) {
        inlined.insert(inlined.begin(), out->rich);
        out->rich = multipartOf("related", inlined);
    } else {
        out->attachments.insert(out->attachments.end(), inlined.begin(), inlined.end());
    }
    return true;
}

}  // namespace tnefmail
