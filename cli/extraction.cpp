#include "cli/extraction.h"

#include <algorithm>

#include "cli/pending_file.h"
#include "cli/safe_names.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

constexpr size_t kHeadBytes = 64;

bool selected(const ExtractOptions& options, int32_t index) {
    return options.only.empty() ||
           std::find(options.only.begin(), options.only.end(), index) != options.only.end();
}

std::string fallbackName(int32_t index) {
    return "subfile-" + std::to_string(index);
}

class Extractor {
public:
    Extractor(Session& session, const ExtractOptions& options)
        : session_(session), options_(options), charset_(session.messageCharset()) {}

    void run(const ListedSubfile& subfile, ExtractReport& report);

private:
    std::string utf8(const std::string& bytes) {
        return eightBitToUtf8(session_.host(), bytes, charset_);
    }

    Session& session_;
    const ExtractOptions& options_;
    CharsetId charset_;
    UniqueNames names_;
};

void Extractor::run(const ListedSubfile& subfile, ExtractReport& report) {
    const SubfileEntry& entry = subfile.entry;
    bool message = entry.type == kSubfileMessage;
    if (entry.type == kSubfileRoot || (message && options_.message.body == BodyChoice::kNone)) return;

    WrittenFile file;
    file.index = entry.index;
    file.name = subfile.name;
    auto fail = [&](std::string error) {
        file.error = std::move(error);
        report.complete = false;
        report.written.push_back(file);
    };

    std::string error;
    std::unique_ptr<PendingFile> pending = PendingFile::create(options_.folder, &error);
    if (pending == nullptr) return fail(error);
    ExtractOutcome outcome = session_.extract(entry.index, pending->io(), options_.message);
    pending->finish();
    file.status = outcome.status;
    if (outcome.status != kTnefOk) return fail(statusText(outcome.status));

    if (outcome.isLink()) {
        const std::optional<std::string>& target =
            outcome.linkedPath ? outcome.linkedPath : outcome.payloadName;
        report.links.push_back({entry.index, target ? utf8(*target) : std::string()});
        return;
    }

    std::string fallback = fallbackName(entry.index);
    std::string base = safeFileName(subfile.name.value_or(""), fallback);
    if (message) {
        BodyForm form = detectBodyForm(pending->head(kHeadBytes));
        file.form = bodyFormName(form);
        base += bodyFormExtension(form);
    } else if (entry.type == kSubfileOle && outcome.payloadName && !outcome.payloadName->empty()) {
        file.payloadName = utf8(*outcome.payloadName);
        base = safeFileName(*file.payloadName, base);
    }
    std::filesystem::path target = options_.folder / names_.claim(base);
    file.bytes = pending->bytes();
    if (!pending->commit(target, options_.overwrite, &error)) return fail(error);
    file.path = target.string();
    report.written.push_back(file);
}

}  // namespace

ExtractReport extractSubfiles(Session& session, const Listing& listing,
                              const ExtractOptions& options) {
    ExtractReport report;
    Extractor extractor(session, options);
    for (const ListedSubfile& subfile : listing.subfiles) {
        if (selected(options, subfile.entry.index)) extractor.run(subfile, report);
    }
    return report;
}

nlohmann::ordered_json extractReportJson(const ExtractReport& report) {
    nlohmann::ordered_json written = nlohmann::ordered_json::array();
    for (const WrittenFile& file : report.written) {
        nlohmann::ordered_json item = {{"index", file.index},
                               {"name", file.name ? nlohmann::ordered_json(*file.name) : nullptr}};
        if (file.path) item["path"] = *file.path;
        item["bytes"] = file.bytes;
        item["status"] = file.status;
        if (file.form) item["form"] = *file.form;
        if (file.payloadName) item["payloadName"] = *file.payloadName;
        if (file.error) item["error"] = *file.error;
        written.push_back(std::move(item));
    }
    nlohmann::ordered_json links = nlohmann::ordered_json::array();
    for (const LinkedFile& link : report.links) {
        links.push_back({{"index", link.index}, {"path", link.path}});
    }
    return {{"written", written}, {"links", links}};
}

}  // namespace tnefcli
