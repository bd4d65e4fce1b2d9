// tnef-reader show FILE [--format auto|text|html|rtf] [--charset NAME] [--no-header]
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "cli/body_option.h"
#include "cli/charset_option.h"
#include "cli/commands.h"
#include "cli/exit_codes.h"
#include "cli/mail_parts.h"
#include "cli/open_input.h"
#include "cli/report_text.h"
#include "client/stdout_io.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

struct ShowOptions {
    std::string file;
    PartChoice part;
    std::string format = "auto";
    std::string charset;
    bool noHeader = false;
};

int runShow(const ShowOptions& options) {
    OpenedInput input = openInput(options.file, false, options.part);
    if (!input.usable()) return reportUnusable(options.file, input, false);
    warnDamaged(options.file, input);
    Session& session = *input.session;
    int32_t message = session.messageIndex();
    if (message < 0) {
        printError(options.file, "the stream holds no message");
        return kExitPartial;
    }
    // Text for a terminal is UTF-8 unless asked otherwise; text for a pipe
    // or a file stays in the charset the module gives it.
    ExtractSettings settings;
    settings.body = bodyChoiceNames().at(options.format);
    settings.noHeader = options.noHeader;
    settings.charset = charsetFromName(options.charset);
    if (settings.charset == kCharsetNone && ::isatty(STDOUT_FILENO) != 0) {
        settings.charset = kCharsetUtf8;
    }
    std::fflush(stdout);
    StdoutIo output;
    ExtractOutcome outcome = session.extract(message, output.io(), settings);
    if (output.failed()) {
        printError(options.file, "cannot write to standard output");
        return kExitPartial;
    }
    if (outcome.status != kTnefOk) {
        printError(options.file, "the message can't be rendered: " + statusText(outcome.status));
        return kExitPartial;
    }
    return input.error ? kExitPartial : kExitOk;
}

}  // namespace

void addShowCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ShowOptions>();
    CLI::App* show = app.add_subcommand("show", "Render the message to standard output");
    show->add_option("FILE", options->file, kFileHelp)->required();
    addPartOption(*show, options->part);
    show->add_option("--format", options->format,
                     "Form of the message: auto (the module's choice), text, html or rtf")
        ->transform(CLI::IsMember({"auto", "text", "html", "rtf"}, CLI::ignore_case))
        ->option_text("auto|text|html|rtf");
    show->add_option("--charset", options->charset,
                     "Charset of the text (default: utf-8 on a terminal, else as stored)")
        ->check(charsetNameValidator())
        ->option_text("NAME");
    show->add_flag("--no-header", options->noHeader, "Show the body without the summary header");
    show->callback([options, &exitCode] { exitCode = runShow(*options); });
}

}  // namespace tnefcli
