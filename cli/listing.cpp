#include "cli/listing.h"

#include "cli/element_values.h"
#include "cli/text_utf8.h"
#include "cli/time_format.h"

namespace tnefcli {

namespace {

SummaryText readSummary(Session& session) {
    SummaryText text;
    int32_t message = session.messageIndex();
    if (message < 0) return text;
    CharsetId charset = session.messageCharset();
    std::vector<Element> elements = session.summary(message, &text.status);
    for (const Element& element : elements) {
        if (!element.name) continue;
        const std::string& name = *element.name;
        if (name == "Priority") {
            if (element.hasValue && element.type == kElementInteger) {
                text.importance = importanceWord(element.number);
            }
            continue;
        }
        nlohmann::ordered_json value = elementJson(session.host(), element, charset);
        if (!value.is_string()) continue;
        std::optional<std::string> decoded = value.get<std::string>();
        if (name == "From") text.from = decoded;
        else if (name == "Sent") text.sent = decoded;
        else if (name == "To") text.to = decoded;
        else if (name == "Cc") text.cc = decoded;
        else if (name == "Bcc") text.bcc = decoded;
        else if (name == "Subject") text.subject = decoded;
    }
    return text;
}

nlohmann::ordered_json orNull(const std::optional<std::string>& text) {
    return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json(nullptr);
}

}  // namespace

Listing readListing(Session& session) {
    Listing listing;
    CharsetId charset = session.subfileCount() > 0 ? session.messageCharset() : 0;
    for (int32_t i = 0; i < session.subfileCount(); ++i) {
        ListedSubfile subfile;
        subfile.entry = session.subfile(i);
        if (subfile.entry.status != kTnefOk) listing.complete = false;
        if (subfile.entry.name) {
            subfile.name = eightBitToUtf8(session.host(), *subfile.entry.name, charset);
        }
        if (subfile.entry.type != kSubfileRoot) subfile.time = fileTimeToIso(subfile.entry.time);
        listing.subfiles.push_back(std::move(subfile));
    }
    listing.summary = readSummary(session);
    return listing;
}

const char* subfileTypeName(int32_t type) {
    switch (type) {
        case kSubfileMessage: return "message";
        case kSubfileAttachment: return "attachment";
        case kSubfileOle: return "ole";
        case kSubfileRoot: return "root";
        default: return "unknown";
    }
}

nlohmann::ordered_json summaryJson(const SummaryText& summary) {
    return {{"from", orNull(summary.from)}, {"sent", orNull(summary.sent)},
            {"to", orNull(summary.to)},     {"cc", orNull(summary.cc)},
            {"bcc", orNull(summary.bcc)},   {"subject", orNull(summary.subject)},
            {"importance", orNull(summary.importance)}};
}

nlohmann::ordered_json subfileJson(const ListedSubfile& subfile) {
    const SubfileEntry& e = subfile.entry;
    nlohmann::ordered_json out = {{"index", e.index},
                          {"name", orNull(subfile.name)},
                          {"type", subfileTypeName(e.type)},
                          {"size", e.size},
                          {"time", orNull(subfile.time)}};
    if (e.hasCharset) out["charset"] = e.charset;
    out["parentIndex"] = e.parentIndex;
    if (!e.children.empty()) out["children"] = e.children;
    if (e.status != kTnefOk) out["status"] = e.status;
    return out;
}

}  // namespace tnefcli
