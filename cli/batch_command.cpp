// tnef-reader batch INPUT... -C DIR [--jobs N] [--overwrite] [--no-recurse] [--json]
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "cli/commands.h"
#include "cli/exit_codes.h"
#include "cli/extraction.h"
#include "cli/json_output.h"
#include "cli/mail_parts.h"
#include "cli/open_input.h"
#include "cli/progress_bar.h"
#include "cli/report_text.h"
#include "cli/safe_names.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

namespace fs = std::filesystem;

struct BatchOptions {
    std::vector<std::string> inputs;
    std::string folder;
    unsigned jobs = 0;
    bool overwrite = false;
    bool noRecurse = false;
    bool json = false;
};

// One stream extracted into one folder: a TNEF file, or a TNEF part of mail.
struct BatchItem {
    std::string file;
    fs::path folder;  // where its subfiles go
    int exitCode = kExitOk;
    std::optional<int32_t> status;
    std::optional<std::string> error;
    ExtractReport report;
    std::optional<tnefmail::TnefPart> part;
    bool noTnef = false;  // mail without a TNEF part
};

// One input named on the command line or found in a folder, and what it gave.
struct BatchInput {
    std::string file;
    fs::path folder;
    std::vector<BatchItem> items;
};

// Every file named, and every regular file below every folder named (but
// in a maildir's tmp/), in a stable order.
std::vector<std::string> collectFiles(const std::vector<std::string>& inputs) {
    std::vector<std::string> files;
    for (const std::string& input : inputs) {
        std::error_code ec;
        if (!fs::is_directory(input, ec)) {
            files.push_back(input);
            continue;
        }
        std::vector<std::string> found;
        auto walk = fs::recursive_directory_iterator(
            input, fs::directory_options::skip_permission_denied, ec);
        for (auto it = walk; !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
            std::error_code typeError;
            // A maildir's tmp/ holds messages still being delivered.
            if (it->is_directory(typeError) && it->path().filename() == "tmp" &&
                tnefmail::isMaildir(it->path().parent_path().string())) {
                it.disable_recursion_pending();
            } else if (it->is_regular_file(typeError)) {
                found.push_back(it->path().string());
            }
        }
        std::sort(found.begin(), found.end());
        files.insert(files.end(), found.begin(), found.end());
    }
    return files;
}

void extractItem(OpenedInput& input, BatchItem& item, const BatchOptions& options) {
    item.status = input.status;
    item.error = input.error;
    if (!input.usable()) {
        item.exitCode = input.exitCode;
        return;
    }
    std::error_code ec;
    fs::create_directories(item.folder, ec);
    if (ec) {
        item.exitCode = kExitUnreadable;
        item.error = "cannot make " + item.folder.string() + ": " + ec.message();
        return;
    }
    ExtractOptions extract;
    extract.folder = item.folder;
    extract.overwrite = options.overwrite;
    extract.recurse = !options.noRecurse;
    Listing listing = readListing(*input.session);
    item.report = extractSubfiles(*input.session, listing, extract);
    item.exitCode = input.error || !item.report.complete ? kExitPartial : kExitOk;
}

// The folder of a TNEF part of mail: the input's own, with a folder per
// message of an mbox and per part of a message with several.
fs::path partFolder(const fs::path& base, const tnefmail::TnefPart& part, bool mbox) {
    fs::path folder = base;
    if (mbox) folder /= "message " + std::to_string(part.message.number);
    if (part.message.tnefParts > 1) folder /= "part " + std::to_string(part.number);
    return folder;
}

void processInput(const ReaderModule& module, tnefhost::PosixHost& host, BatchInput& batchInput,
                  const BatchOptions& options) {
    InputSource source = lookAt(batchInput.file);
    if (!source.isMail()) {
        BatchItem& item = batchInput.items.emplace_back();
        item.file = batchInput.file;
        item.folder = batchInput.folder;
        OpenedInput input = openSource(module, host, source, false);
        extractItem(input, item, options);
        return;
    }
    bool mbox = source.mail->kind() == tnefmail::InputKind::kMbox;
    MailScan scan = forEachMailPart(
        module, host, *source.mail, false, [&](const tnefmail::TnefPart& part, OpenedInput& input) {
            BatchItem& item = batchInput.items.emplace_back();
            item.file = batchInput.file;
            item.folder = partFolder(batchInput.folder, part, mbox);
            item.part = part;
            extractItem(input, item, options);
        });
    if (scan.parts == 0) {
        BatchItem& item = batchInput.items.emplace_back();
        item.file = batchInput.file;
        item.exitCode = kExitUnreadable;
        item.noTnef = true;
        item.error = noTnefText(scan);
    }
}

void runWorkers(std::vector<BatchInput>& items, const BatchOptions& options,
                const ReaderModule& module) {
    unsigned jobs = options.jobs != 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
    jobs = static_cast<unsigned>(std::min<size_t>(jobs, std::max<size_t>(items.size(), 1)));
    ProgressBar progress(items.size());
    std::atomic<size_t> next{0};
    auto work = [&] {
        auto host = makeHost(module, "");  // one host context per worker
        for (size_t i = next++; i < items.size(); i = next++) {
            processInput(module, *host, items[i], options);
            progress.advance();
        }
    };
    std::vector<std::thread> threads;
    for (unsigned j = 1; j < jobs; ++j) threads.emplace_back(work);
    work();
    for (std::thread& thread : threads) thread.join();
}

const char* outcomeWord(const BatchItem& item) {
    if (item.noTnef) return "no TNEF";
    switch (item.exitCode) {
        case kExitOk: return "ok";
        case kExitPartial: return "partial";
        default: return "failed";
    }
}

// A line for every subfile that was not written, and for every embedded
// message that could not be read, at every depth.
void printProblems(const ExtractReport& report, const std::string& prefix) {
    for (const WrittenFile& file : report.written) {
        std::string index = prefix + std::to_string(file.index);
        if (!file.path) std::printf("\n        subfile %s: %s", index.c_str(), file.error.value_or("").c_str());
        if (file.nested == nullptr) continue;
        if (file.nested->error) {
            std::printf("\n        embedded message %s: %s", index.c_str(), file.nested->error->c_str());
        }
        printProblems(file.nested->report, index + "/");
    }
}

void printItems(const std::vector<BatchItem>& items) {
    for (const BatchItem& item : items) {
        size_t written = 0;
        for (const WrittenFile& file : item.report.written) written += file.path ? 1 : 0;
        std::printf("%-7s %s", outcomeWord(item), printable(item.file).c_str());
        if (item.part) std::printf(" [%s]", printable(partText(*item.part)).c_str());
        if (item.exitCode != kExitUnreadable) {
            std::printf(" -> %s (%zu written, %zu linked)", printable(item.folder.string()).c_str(),
                        written, item.report.links.size());
        }
        if (item.error) std::printf(": %s", item.error->c_str());
        printProblems(item.report, "");
        std::printf("\n");
    }
}

nlohmann::ordered_json itemsJson(const std::vector<BatchItem>& items) {
    nlohmann::ordered_json files = nlohmann::ordered_json::array();
    for (const BatchItem& item : items) {
        auto entry = fileReportHead(item.file, item.status, item.error);
        if (item.part) entry["part"] = partJson(*item.part);
        entry["outcome"] = outcomeWord(item);
        entry["exit"] = item.exitCode;
        if (item.exitCode != kExitUnreadable) {
            entry["folder"] = item.folder.string();
            nlohmann::ordered_json written = extractReportJson(item.report);
            for (auto& [key, value] : written.items()) entry[key] = value;
        }
        files.push_back(std::move(entry));
    }
    return files;
}

int runBatch(const BatchOptions& options) {
    if (std::find(options.inputs.begin(), options.inputs.end(), "-") != options.inputs.end()) {
        std::fprintf(stderr, "tnef-reader: batch reads files and folders, not standard input\n");
        return kExitUsage;
    }
    std::string error;
    const ReaderModule* module = ReaderModule::load(&error);
    if (module == nullptr) {
        std::fprintf(stderr, "tnef-reader: %s\n", error.c_str());
        return kExitUnreadable;
    }
    std::error_code ec;
    fs::create_directories(options.folder, ec);
    if (!fs::is_directory(options.folder, ec)) {
        std::fprintf(stderr, "tnef-reader: cannot use %s as the output folder\n",
                     options.folder.c_str());
        return kExitUnreadable;
    }
    // Each input gets a folder of its own, named after it, so that equal
    // attachment names of different messages never meet.
    std::vector<BatchInput> inputs;
    UniqueNames folders;
    for (const std::string& file : collectFiles(options.inputs)) {
        BatchInput input;
        input.file = file;
        input.folder = fs::path(options.folder) /
                       folders.claim(safeFileName(fs::path(file).filename().string(), "input"));
        inputs.push_back(std::move(input));
    }
    runWorkers(inputs, options, *module);
    std::vector<BatchItem> items;
    for (BatchInput& input : inputs) {
        for (BatchItem& item : input.items) items.push_back(std::move(item));
    }

    size_t counts[4] = {0, 0, 0, 0};  // ok, partial, failed, no TNEF
    for (const BatchItem& item : items) {
        ++counts[item.noTnef ? 3 : item.exitCode == kExitOk ? 0 : item.exitCode == kExitPartial ? 1 : 2];
    }
    if (options.json) {
        nlohmann::ordered_json report;
        report["files"] = itemsJson(items);
        report["counts"] = {{"files", items.size()}, {"ok", counts[0]}, {"partial", counts[1]},
                            {"failed", counts[2]}};
        if (counts[3] > 0) report["counts"]["noTnef"] = counts[3];
        printJson(report);
    } else {
        printItems(items);
        std::printf("%zu files: %zu ok, %zu partial, %zu failed", items.size(), counts[0],
                    counts[1], counts[2]);
        std::printf(counts[3] > 0 ? ", %zu without TNEF\n" : "\n", counts[3]);
    }
    if (counts[0] + counts[1] + counts[2] == 0) return kExitUnreadable;  // no TNEF anywhere
    if (counts[1] == 0 && counts[2] == 0) return kExitOk;
    return counts[0] == 0 && counts[1] == 0 ? kExitUnreadable : kExitPartial;
}

}  // namespace

void addBatchCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<BatchOptions>();
    CLI::App* batch = app.add_subcommand(
        "batch", "Extract many TNEF files, and every file below folders, in parallel");
    batch->add_option("INPUT", options->inputs, "TNEF files and folders")->required();
    batch->add_option("-C,--directory", options->folder,
                      "Folder to write into; each input gets a folder of its own there")
        ->required();
    batch->add_option("-j,--jobs", options->jobs, "Parallel workers (default: the core count)")
        ->check(CLI::PositiveNumber);
    batch->add_flag("--overwrite", options->overwrite, "Replace files that already exist");
    batch->add_flag("--no-recurse", options->noRecurse,
                    "Write embedded messages as their TNEF streams, NAME.tnef");
    batch->add_flag("--json", options->json, "Write the report as JSON");
    batch->callback([options, &exitCode] { exitCode = runBatch(*options); });
}

}  // namespace tnefcli
