// tnef-reader extract FILE [-C DIR] [--only N ...] [--body auto|text|html|rtf|none] [--raw]
//                          [--charset NAME] [--no-header] [--overwrite] [--no-recurse] [--json]
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "cli/body_option.h"
#include "cli/charset_option.h"
#include "cli/commands.h"
#include "cli/exit_codes.h"
#include "cli/mail_parts.h"
#include "cli/extraction.h"
#include "cli/json_output.h"
#include "cli/open_input.h"
#include "cli/report_text.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

struct ExtractCommandOptions {
    std::string file;
    PartChoice part;
    std::string folder = ".";
    std::vector<int32_t> only;
    std::string body = "auto";
    std::string charset;
    bool raw = false;
    bool noHeader = false;
    bool overwrite = false;
    bool noRecurse = false;
    bool json = false;
};

// What was written, one line per file on stdout; what was not, on stderr.
// `prefix` leads the indices inside an embedded message ("2/").
void printReport(const std::string& file, const ExtractReport& report, const std::string& prefix) {
    for (const WrittenFile& written : report.written) {
        std::string index = prefix + std::to_string(written.index);
        const NestedReport* nested = written.nested.get();
        if (nested != nullptr && nested->error) {
            warnNested(file, index, nested->opened, *nested->error);
        }
        if (!written.path) {
            std::fprintf(stderr, "tnef-reader: subfile %s (%s): %s\n", index.c_str(),
                         printable(written.name.value_or("no name")).c_str(),
                         written.error.value_or("not written").c_str());
        } else if (nested != nullptr && nested->opened == Opened::kOk) {
            printReport(file, nested->report, index + "/");
        } else {
            std::printf("%s (%lld bytes)\n", printable(*written.path).c_str(),
                        static_cast<long long>(written.bytes));
        }
        if (written.warning) {
            std::fprintf(stderr, "tnef-reader: subfile %s: %s\n", index.c_str(),
                         written.warning->c_str());
        }
    }
    for (const LinkedFile& link : report.links) {
        std::printf("subfile %s links to %s (not written)\n", (prefix + std::to_string(link.index)).c_str(),
                    printable(link.path).c_str());
    }
}

int runExtract(const ExtractCommandOptions& options) {
    OpenedInput input = openInput(options.file, false, options.part);
    if (!input.usable()) return reportUnusable(options.file, input, options.json);
    Session& session = *input.session;
    for (int32_t index : options.only) {
        if (index < 0 || index >= session.subfileCount()) {
            printError(options.file, "no subfile " + std::to_string(index) + " (the stream has " +
                                         std::to_string(session.subfileCount()) + ")");
            return kExitUsage;
        }
    }
    std::error_code ec;
    std::filesystem::create_directories(options.folder, ec);
    if (!std::filesystem::is_directory(options.folder, ec)) {
        printError(options.file, "cannot use " + options.folder + " as the output folder");
        return kExitUnreadable;
    }

    ExtractOptions extract;
    extract.folder = options.folder;
    extract.only = options.only;
    extract.message.body = bodyChoiceNames().at(options.body);
    extract.message.raw = options.raw;
    extract.message.charset = charsetFromName(options.charset);
    extract.message.noHeader = options.noHeader;
    extract.overwrite = options.overwrite;
    extract.recurse = !options.noRecurse;
    Listing listing = readListing(session);
    ExtractReport report = extractSubfiles(session, listing, extract);

    if (options.json) {
        auto document = fileReportHead(options.file, input.status, input.error);
        addPartKey(document, input);
        nlohmann::ordered_json written = extractReportJson(report);
        for (auto& [key, value] : written.items()) document[key] = value;
        printJson(document);
    } else {
        warnDamaged(options.file, input);
        printReport(options.file, report, "");
    }
    return input.error || !report.complete ? kExitPartial : kExitOk;
}

}  // namespace

void addExtractCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ExtractCommandOptions>();
    CLI::App* extract = app.add_subcommand(
        "extract", "Write the attachments and the message into a folder, under safe names");
    extract->add_option("FILE", options->file, kFileHelp)->required();
    addPartOption(*extract, options->part);
    extract->add_option("-C,--directory", options->folder,
                        "Folder to write into (made if missing; default: the current folder)");
    extract->add_option("--only", options->only,
                        "Extract only subfile N (as numbered by list); repeatable")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->delimiter(',');
    extract->add_option("--body", options->body,
                        "Form of the message: auto (HTML when the message has HTML, else text), "
                        "text, html, rtf (the module's RTF), or none to skip the message")
        ->transform(CLI::IsMember({"auto", "text", "html", "rtf", "none"}, CLI::ignore_case))
        ->option_text("auto|text|html|rtf|none");
    extract->add_flag("--raw", options->raw,
                      "Write the message as the module renders it (its choice of body, RTF as "
                      "stored), not made readable");
    extract->add_option("--charset", options->charset, "Charset of the message's text")
        ->check(charsetNameValidator())
        ->option_text("NAME");
    extract->add_flag("--no-header", options->noHeader,
                      "Write the message body without the From/Sent/To summary header");
    extract->add_flag("--overwrite", options->overwrite, "Replace files that already exist");
    extract->add_flag("--no-recurse", options->noRecurse,
                      "Write an embedded message as its TNEF stream, NAME.tnef, instead of a "
                      "folder NAME with its message and attachments");
    extract->add_flag("--json", options->json, "Report what was written as JSON");
    extract->callback([options, &exitCode] { exitCode = runExtract(*options); });
}

}  // namespace tnefcli
