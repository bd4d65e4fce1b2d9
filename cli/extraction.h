// Writing a stream's subfiles into a folder, safely: shared by `extract`
// and `batch`.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/message_output.h"
#include "client/tnef_client.h"

namespace tnefcli {

struct ExtractOptions {
    std::filesystem::path folder = ".";
    std::vector<int32_t> only;  // empty: every subfile
    MessageOptions message;  // the message's form; BodyChoice::kNone skips it
    bool overwrite = false;
    // An embedded message goes into a folder named after it, as the message
    // and its attachments; without, its stream is written as "<name>.tnef".
    bool recurse = true;
};

struct NestedReport;

struct WrittenFile {
    int32_t index = 0;
    std::optional<std::string> name;  // the subfile's name, UTF-8
    std::optional<std::string> path;  // where it went; none when it failed
    int64_t bytes = 0;
    int32_t status = 0;               // the module's
    std::optional<std::string> error; // why nothing was written
    std::optional<std::string> form;  // the message's body form
    std::optional<std::string> source;   // of a readable body: what it was made from
    std::optional<std::string> warning;  // written, but from a damaged RTF body
    std::optional<std::string> payloadName;  // the name an OLE object gives
    // An embedded message: how it opened and, when it did, what was written
    // into its folder (`path`).
    std::shared_ptr<NestedReport> nested;
};

struct LinkedFile {
    int32_t index = 0;
    std::string path;
};

struct ExtractReport {
    std::vector<WrittenFile> written;
    std::vector<LinkedFile> links;
    bool complete = true;  // every subfile asked for was written or linked, at every depth
};

struct NestedReport {
    tnefclient::Opened opened = tnefclient::Opened::kOk;
    std::optional<int32_t> status;     // the module's open status; null when never asked
    std::optional<std::string> error;  // why it is damaged or could not be opened
    ExtractReport report;              // what went into its folder, when opened
};

// Extracts the subfiles of `listing` that `options` select, and embedded
// messages in them to any depth.
ExtractReport extractSubfiles(tnefclient::Session& session, const tnefclient::Listing& listing,
                              const ExtractOptions& options);

// {"written": [...], "links": [...]}; an embedded message's record carries
// "nested": {"status", "error", "written", "links"}, the last two only when
// it could be opened.
nlohmann::ordered_json extractReportJson(const ExtractReport& report);

}  // namespace tnefcli
