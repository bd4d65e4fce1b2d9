#include "cli/extraction.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "cli/message_output.h"
#include "cli/pending_file.h"
#include "cli/safe_names.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

constexpr size_t kHeadBytes = 64;
constexpr const char* kStreamExtension = ".tnef";

bool selected(const ExtractOptions& options, int32_t index) {
    return options.only.empty() ||
           std::find(options.only.begin(), options.only.end(), index) != options.only.end();
}

std::string fallbackName(int32_t index) {
    return "subfile-" + std::to_string(index);
}

// Makes the folder of an embedded message, or takes the one there. Anything
// else of that name, a symbolic link above all, is left alone: nothing is
// ever written through it.
bool makeFolder(const std::filesystem::path& folder, std::string* error) {
    if (::mkdir(folder.c_str(), 0777) == 0) return true;
    struct stat info {};
    if (errno == EEXIST && ::lstat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) return true;
    *error = errno == EEXIST ? folder.string() + " exists and is not a folder"
                             : "cannot make " + folder.string() + ": " + std::strerror(errno);
    return false;
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
    // Opens the embedded message of `file` and writes it into its folder;
    // false when it can't be opened (file.nested says why).
    bool runNested(const ListedSubfile& subfile, WrittenFile& file, ExtractReport& report);

    Session& session_;
    const ExtractOptions& options_;
    CharsetId charset_;
    UniqueNames names_;
};

bool Extractor::runNested(const ListedSubfile& subfile, WrittenFile& file, ExtractReport& report) {
    file.nested = std::make_shared<NestedReport>();
    NestedReport& nested = *file.nested;
    Session child(session_.module(), session_.host());
    std::string error;
    nested.opened = child.openEmbedded(session_, subfile.entry.index, &error);
    if (nested.opened != Opened::kUnreadable) nested.status = child.openStatus();
    if (nested.opened != Opened::kOk || child.openStatus() != kTnefOk) {
        nested.error = nested.opened == Opened::kOk ? statusText(child.openStatus()) : error;
        report.complete = false;
    }
    if (nested.opened != Opened::kOk) return false;

    std::filesystem::path folder =
        options_.folder /
        names_.claim(safeFileName(subfile.name.value_or(""), fallbackName(subfile.entry.index)));
    file.bytes = subfile.entry.size;
    if (!makeFolder(folder, &error)) {
        file.error = error;
        report.complete = false;
    } else {
        ExtractOptions inner = options_;
        inner.folder = folder;
        inner.only.clear();
        nested.report = extractSubfiles(child, readListing(child), inner);
        if (!nested.report.complete) report.complete = false;
        file.path = folder.string();
    }
    report.written.push_back(file);
    return true;
}

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
    bool embedded = session_.holdsEmbeddedMessage(entry.index);
    if (embedded && options_.recurse && runNested(subfile, file, report)) return;

    std::string error;
    std::unique_ptr<PendingFile> pending = PendingFile::create(options_.folder, &error);
    if (pending == nullptr) return fail(error);
    ExtractOutcome outcome;
    MessageWritten rendered;
    if (message) {
        rendered = writeMessage(session_, entry.index, options_.message, pending->io());
        outcome.status = rendered.status;
    } else {
        outcome = session_.extract(entry.index, pending->io());
    }
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
        BodyForm form = rendered.form.value_or(detectBodyForm(pending->head(kHeadBytes)));
        file.form = bodyFormName(form);
        file.source = rendered.source;
        file.warning = rendered.warning;
        if (file.warning) report.complete = false;
        base += bodyFormExtension(form);
    } else if (entry.type == kSubfileOle && outcome.payloadName && !outcome.payloadName->empty()) {
        file.payloadName = utf8(*outcome.payloadName);
        base = safeFileName(*file.payloadName, base);
    } else if (embedded && startsWithTnefSignature(pending->head(kHeadBytes))) {
        base += kStreamExtension;
    }
    std::filesystem::path target = options_.folder / names_.claim(base);
    file.bytes = pending->bytes();
    if (!pending->commit(target, options_.overwrite, &error)) return fail(error);
    file.path = target.string();
    report.written.push_back(file);
}

nlohmann::ordered_json nestedJson(const NestedReport& nested) {
    nlohmann::ordered_json out;
    out["status"] = nested.status ? nlohmann::ordered_json(*nested.status) : nullptr;
    out["error"] = nested.error ? nlohmann::ordered_json(*nested.error) : nullptr;
    if (nested.opened != Opened::kOk) return out;
    nlohmann::ordered_json written = extractReportJson(nested.report);
    out["written"] = std::move(written["written"]);
    out["links"] = std::move(written["links"]);
    return out;
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
        if (file.source) item["source"] = *file.source;
        if (file.warning) item["warning"] = *file.warning;
        if (file.payloadName) item["payloadName"] = *file.payloadName;
        if (file.error) item["error"] = *file.error;
        if (file.nested) item["nested"] = nestedJson(*file.nested);
        written.push_back(std::move(item));
    }
    nlohmann::ordered_json links = nlohmann::ordered_json::array();
    for (const LinkedFile& link : report.links) {
        links.push_back({{"index", link.index}, {"path", link.path}});
    }
    return {{"written", written}, {"links", links}};
}

}  // namespace tnefcli
