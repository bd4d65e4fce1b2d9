#include "cli/json_output.h"

#include <cstdio>

namespace tnefcli {

void printJson(const nlohmann::ordered_json& document) {
    std::string text = document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

nlohmann::ordered_json fileReportHead(const std::string& file, std::optional<int32_t> status,
                                      const std::optional<std::string>& error) {
    nlohmann::ordered_json head;
    head["file"] = file;
    head["status"] = status ? nlohmann::ordered_json(*status) : nlohmann::ordered_json(nullptr);
    head["error"] = error ? nlohmann::ordered_json(*error) : nlohmann::ordered_json(nullptr);
    return head;
}

}  // namespace tnefcli
