// tnef-reader list FILE [--json] [--root]
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/exit_codes.h"
#include "cli/json_output.h"
#include "cli/listing_json.h"
#include "cli/open_input.h"
#include "cli/report_text.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

struct ListOptions {
    std::string file;
    bool json = false;
    bool root = false;
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

int runList(const ListOptions& options) {
    OpenedInput input = openInput(options.file, options.root);
    if (!input.usable()) return reportUnusable(options.file, input, options.json);
    Listing listing = readListing(*input.session, true);
    if (options.json) {
        auto report = fileReportHead(options.file, input.status, input.error);
        report["summary"] = summaryJson(listing.summary);
        report["subfiles"] = subfilesJson(listing);
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
                "and Subject");
    list->add_option("FILE", options->file, "The TNEF file, or - for standard input")->required();
    list->add_flag("--json", options->json, "Write the listing as JSON");
    list->add_flag("--root", options->root, "Show the synthetic \"root/\" directory entry as index 0");
    list->callback([options, &exitCode] { exitCode = runList(*options); });
}

}  // namespace tnefcli
