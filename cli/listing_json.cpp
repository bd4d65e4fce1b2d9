#include "cli/listing_json.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

nlohmann::ordered_json orNull(const std::optional<std::string>& text) {
    return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json(nullptr);
}

}  // namespace

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
