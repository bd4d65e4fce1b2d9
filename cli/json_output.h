// JSON written by the tool: one document per line on stdout, always valid
// UTF-8, keys in the order they were added.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace tnefcli {


void printJson(const nlohmann::ordered_json& document);

// The head every report starts with: {"file", "status", "error"}. `status`
// is the module's open status, null when the file never reached the module.
nlohmann::ordered_json fileReportHead(const std::string& file, std::optional<int32_t> status,
                                      const std::optional<std::string>& error);

}  // namespace tnefcli
