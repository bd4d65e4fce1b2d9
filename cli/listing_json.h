// A listing as JSON, for `list --json`.
#pragma once

#include <nlohmann/json.hpp>

#include "client/tnef_client.h"

namespace tnefcli {

nlohmann::ordered_json summaryJson(const tnefclient::SummaryText& summary);
nlohmann::ordered_json subfileJson(const tnefclient::ListedSubfile& subfile);

}  // namespace tnefcli
