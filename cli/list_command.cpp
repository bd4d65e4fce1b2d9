// tnef-reader list FILE [--json] [--root]
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/exit_codes.h"
#include "cli/json_output.h"
#include "client/listing_json.h"
#include "cli/mail_parts.h"
#include "cli/open_input.h"
#include "cli/report_text.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

struct ListOptions {
    std::string file;
    bool json = false;
    bool root = false;
    PartChoice part;
};

// One line of the table: a subfile and its index path ("2/1").
struct Row {
    std::string index;
    const ListedSubfile* subfile;
};

// The rows of `listing`, each embedded message followed by its own rows;
// what could not be read of an embedded message is told on stderr.
void collectRows(const std::string& file, const Listing& listing, const std::string& prefix,
                 std::vector<Row>& rows) {
    for (const ListedSubfile& s : listing.subfiles) {
        std::string index = prefix + std::to_string(s.entry.index);
        rows.push_back({index, &s});
        if (!s.nested) continue;
        if (s.nested->error) warnNested(file, index, s.nested->opened, *s.nested->error);
        collectRows(file, s.nested->listing, index + "/", rows);
    }
}

void printTable(const std::string& file, const Listing& listing) {
    std::vector<Row> rows;
    collectRows(file, listing, "", rows);
    const auto& summary = listing.summary;
    auto line = [](const char* label, const std::optional<std::string>& value) {
        std::printf("%-9s %s\n", label, value ? printable(*value).c_str() : "-");
    };
    line("From:", summary.from);
    line("Sent:", summary.sent);
    line("To:", summary.to);
    line("Subject:", summary.subject);
    std::printf("\n");

    int indexWidth = 5;
    int sizeWidth = 4;
    for (const Row& row : rows) {
        indexWidth = std::max(indexWidth, static_cast<int>(row.index.size()));
        sizeWidth = std::max(sizeWidth, static_cast<int>(std::to_string(row.subfile->entry.size).size()));
    }
    std::printf("%*s  %-10s  %*s  %-20s  %s\n", indexWidth, "Index", "Type", sizeWidth, "Size",
                "Time", "Name");
    for (const Row& row : rows) {
        const ListedSubfile& s = *row.subfile;
        std::string name = s.name ? printable(*s.name) : "(no name: " + statusText(s.entry.status) + ")";
        std::printf("%*s  %-10s  %*d  %-20s  %s\n", indexWidth, row.index.c_str(),
                    subfileTypeName(s.entry.type), sizeWidth, s.entry.size,
                    s.time.value_or("-").c_str(), name.c_str());
    }
}

// The summary and subfiles of an opened stream, after the keys in `report`.
void addListing(nlohmann::ordered_json& report, const Listing& listing) {
    report["summary"] = summaryJson(listing.summary);
    report["subfiles"] = subfilesJson(listing);
}

void printPartHead(const tnefmail::TnefPart& part) {
    const auto& message = part.message;
    std::printf("== %s\n", printable(partText(part)).c_str());
    std::printf("   Subject: %s\n", printable(message.subject.value_or("-")).c_str());
    std::printf("   From:    %s\n\n", printable(message.from.value_or("-")).c_str());
}

// Every TNEF part of a mail input (or the one --part names), listed in turn.
int listMail(const ListOptions& options, InputSource& source) {
    std::string error;
    const ReaderModule* module = ReaderModule::load(&error);
    if (module == nullptr) {
        printError(options.file, error);
        return kExitUnreadable;
    }
    auto host = makeHost(*module, displayName(options.file));
    nlohmann::ordered_json parts = nlohmann::ordered_json::array();
    bool partial = false;
    size_t listed = 0;
    MailScan scan = forEachMailPart(
        *module, *host, *source.mail, options.root,
        [&](const tnefmail::TnefPart& part, OpenedInput& input) {
            if (options.part && part.number != *options.part) return;
            ++listed;
            Listing listing;
            if (input.usable()) listing = readListing(*input.session, true);
            partial = partial || !input.usable() || input.error || !listing.complete;
            if (options.json) {
                nlohmann::ordered_json entry = partJson(part);
                entry["status"] = input.status ? nlohmann::ordered_json(*input.status) : nullptr;
                entry["error"] = input.error ? nlohmann::ordered_json(*input.error) : nullptr;
                if (input.usable()) addListing(entry, listing);
                parts.push_back(std::move(entry));
                return;
            }
            if (listed > 1) std::printf("\n");
            printPartHead(part);
            if (!input.usable()) {
                printError(options.file, partText(part) + ": " + input.error.value_or("cannot be read"));
                return;
            }
            warnDamaged(options.file, input);
            printTable(options.file, listing);
        });
    std::optional<std::string> problem;
    if (scan.parts == 0) problem = noTnefText(scan);
    if (options.part && listed == 0 && scan.parts > 0) problem = noSuchPartText(*options.part, scan);
    if (options.json) {
        auto report = fileReportHead(options.file, std::nullopt, problem);
        report["input"] = tnefmail::inputKindName(source.mail->kind());
        report["messages"] = scan.messages;
        report["parts"] = parts;
        printJson(report);
    } else if (problem) {
        printError(options.file, *problem);
    }
    if (scan.parts == 0) return kExitUnreadable;
    if (listed == 0) return kExitUsage;
    return partial ? kExitPartial : kExitOk;
}

int runList(const ListOptions& options) {
    InputSource source = lookAt(options.file);
    if (source.isMail()) return listMail(options, source);
    OpenedInput input = openInput(source, options.root);
    if (!input.usable()) return reportUnusable(options.file, input, options.json);
    Listing listing = readListing(*input.session, true);
    if (options.json) {
        auto report = fileReportHead(options.file, input.status, input.error);
        addListing(report, listing);
        printJson(report);
    } else {
        warnDamaged(options.file, input);
        printTable(options.file, listing);
    }
    return input.error || !listing.complete ? kExitPartial : kExitOk;
}

}  // namespace

void addListCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ListOptions>();
    CLI::App* list = app.add_subcommand(
        "list", "List the message and the attachments of a TNEF stream, under its From, Sent, To "
                "and Subject; for mail, of every TNEF part in it");
    list->add_option("FILE", options->file, kFileHelp)->required();
    list->add_flag("--json", options->json, "Write the listing as JSON");
    list->add_flag("--root", options->root, "Show the synthetic \"root/\" directory entry as index 0");
    addPartOption(*list, options->part);
    list->callback([options, &exitCode] { exitCode = runList(*options); });
}

}  // namespace tnefcli
