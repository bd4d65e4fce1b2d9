// tnef-reader unwrap [FILE|-] [-o OUT] [--in-place]
#include <cstdio>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/exit_codes.h"
#include "cli/open_input.h"
#include "cli/report_text.h"
#include "mail/unwrap.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

int runUnwrap(const tnefmail::UnwrapRequest& request) {
    std::string error;
    const ReaderModule* module = ReaderModule::load(&error);
    if (module == nullptr) {
        printError(request.input, error);
        return kExitUnreadable;
    }
    auto host = makeHost(*module, displayName(request.input));
    tnefmail::UnwrapReport report = tnefmail::unwrapMail(*module, host->context(), request);
    for (const std::string& problem : report.problems) printError(request.input, problem);
    if (report.error) {
        printError(request.input, *report.error);
        return report.usageError ? kExitUsage : kExitUnreadable;
    }
    return report.problems.empty() ? kExitOk : kExitPartial;
}

}  // namespace

void addUnwrapCommand(CLI::App& app, int& exitCode) {
    auto request = std::make_shared<tnefmail::UnwrapRequest>();
    CLI::App* unwrap = app.add_subcommand(
        "unwrap", "Write mail again with every TNEF part replaced by standard MIME: the body, "
                  "inline images, attachments and embedded messages");
    unwrap->add_option("FILE", request->input,
                       "A mail message, an mbox or a maildir, or - for standard input (the default)");
    unwrap->add_option("-o,--output", request->output,
                       "Write the result to this file (default: standard output)");
    unwrap->add_flag("--in-place", request->inPlace,
                     "Replace the file, or each changed message file of a maildir, by its "
                     "unwrapped form (written beside it, then renamed over it)");
    unwrap->callback([request, &exitCode] { exitCode = runUnwrap(*request); });
}

}  // namespace tnefcli
