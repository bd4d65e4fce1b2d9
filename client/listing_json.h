// A listing as JSON: what `list --json` writes and the browser viewer reads.
#pragma once

#include <nlohmann/json.hpp>

#include "client/tnef_client.h"

namespace tnefclient {

nlohmann::ordered_json summaryJson(const SummaryText& summary);
// Every subfile; an embedded message carries its own listing under
// "nested": {"status", "error", "summary", "subfiles"}, the last two only
// when it could be opened.
nlohmann::ordered_json subfilesJson(const Listing& listing);

}  // namespace tnefclient
