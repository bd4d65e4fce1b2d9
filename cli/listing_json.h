// A listing as JSON, for `list --json`.
#pragma once

#include <nlohmann/json.hpp>

#include "client/tnef_client.h"

namespace tnefcli {

nlohmann::ordered_json summaryJson(const tnefclient::SummaryText& summary);
// Every subfile; an embedded message carries its own listing under
// "nested": {"status", "error", "summary", "subfiles"}, the last two only
// when it could be opened.
nlohmann::ordered_json subfilesJson(const tnefclient::Listing& listing);

}  // namespace tnefcli
