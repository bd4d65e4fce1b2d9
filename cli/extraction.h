// Writing a stream's subfiles into a folder, safely: shared by `extract`
// and `batch`.
#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "client/tnef_client.h"

namespace tnefcli {

struct ExtractOptions {
    std::filesystem::path folder = ".";
    std::vector<int32_t> only;  // empty: every subfile
    tnefclient::ExtractSettings message;  // the message's form; BodyChoice::kNone skips it
    bool overwrite = false;
};

struct WrittenFile {
    int32_t index = 0;
    std::optional<std::string> name;  // the subfile's name, UTF-8
    std::optional<std::string> path;  // where it went; none when it failed
    int64_t bytes = 0;
    int32_t status = 0;               // the module's
    std::optional<std::string> error; // why nothing was written
    std::optional<std::string> form;  // the message's body form
    std::optional<std::string> payloadName;  // the name an OLE object gives
};

struct LinkedFile {
    int32_t index = 0;
    std::string path;
};

struct ExtractReport {
    std::vector<WrittenFile> written;
    std::vector<LinkedFile> links;
    bool complete = true;  // every subfile asked for was written or linked
};

// Extracts the subfiles of `listing` that `options` select.
ExtractReport extractSubfiles(tnefclient::Session& session, const tnefclient::Listing& listing,
                              const ExtractOptions& options);

nlohmann::ordered_json extractReportJson(const ExtractReport& report);

}  // namespace tnefcli
