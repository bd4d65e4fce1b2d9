// What a stream holds, read once for `list`, `extract` and `batch`: every
// subfile with its name as UTF-8, and the message's summary.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/session.h"

namespace tnefcli {

struct ListedSubfile {
    SubfileEntry entry;
    std::optional<std::string> name;  // UTF-8; null when the module gave none
    std::optional<std::string> time;  // ISO 8601
};

struct SummaryText {
    int32_t status = 0;  // of the metadata query; 0 when there is no message
    std::optional<std::string> from, sent, to, cc, bcc, subject, importance;
};

struct Listing {
    std::vector<ListedSubfile> subfiles;
    SummaryText summary;
    bool complete = true;  // every subfile could be described
};

Listing readListing(Session& session);

// "message", "attachment", "ole", "root".
const char* subfileTypeName(int32_t type);

nlohmann::ordered_json summaryJson(const SummaryText& summary);
nlohmann::ordered_json subfileJson(const ListedSubfile& subfile);

}  // namespace tnefcli
