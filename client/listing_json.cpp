#include "client/listing_json.h"

namespace tnefclient {

namespace {

nlohmann::ordered_json orNull(const std::optional<std::string>& text) {
    return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json(nullptr);
}

nlohmann::ordered_json nestedJson(const NestedListing& nested) {
    nlohmann::ordered_json out;
    out["status"] = nested.status ? nlohmann::ordered_json(*nested.status) : nullptr;
    out["error"] = orNull(nested.error);
    if (nested.opened == Opened::kOk) {
        out["summary"] = summaryJson(nested.listing.summary);
        out["subfiles"] = subfilesJson(nested.listing);
    }
    return out;
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
    if (subfile.nested) out["nested"] = nestedJson(*subfile.nested);
    return out;
}

}  // namespace

nlohmann::ordered_json summaryJson(const SummaryText& summary) {
    return {{"from", orNull(summary.from)}, {"sent", orNull(summary.sent)},
            {"to", orNull(summary.to)},     {"cc", orNull(summary.cc)},
            {"bcc", orNull(summary.bcc)},   {"subject", orNull(summary.subject)},
            {"importance", orNull(summary.importance)}};
}

nlohmann::ordered_json subfilesJson(const Listing& listing) {
    nlohmann::ordered_json subfiles = nlohmann::ordered_json::array();
    for (const ListedSubfile& subfile : listing.subfiles) subfiles.push_back(subfileJson(subfile));
    return subfiles;
}

}  // namespace tnefclient
