// tnef-reader show FILE [--format auto|text|html|rtf] [--raw] [--charset NAME] [--no-header]
//                       [--index N[/N...]]
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "cli/body_option.h"
#include "cli/charset_option.h"
#include "cli/commands.h"
#include "cli/exit_codes.h"
#include "cli/index_path.h"
#include "cli/mail_parts.h"
#include "cli/message_output.h"
#include "cli/open_input.h"
#include "cli/report_text.h"
#include "client/output_sinks.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

struct ShowOptions {
    std::string file;
    PartChoice part;
    std::string format = "auto";
    std::string charset;
    bool raw = false;
    bool noHeader = false;
    std::optional<std::string> index;
};

// The message that `index` names: a message subfile, or the message of an
// embedded message; without `index`, the stream's message.
PathTarget findMessage(Session& top, const std::optional<std::string>& index) {
    PathTarget target;
    target.session = &top;
    std::string where = "the stream";
    if (index) {
        target = followIndexPath(top, *parseIndexPath(*index));
        if (target.exitCode != 0) return target;
        if (target.session->subfile(target.index).type == kSubfileMessage) return target;
        if (!target.session->holdsEmbeddedMessage(target.index)) {
            target.exitCode = kExitUsage;
            target.error = "subfile " + *index + " is not a message";
            return target;
        }
        if (!enterEmbeddedMessage(target, *index)) return target;
        where = "embedded message " + *index;
    }
    target.index = target.session->messageIndex();
    if (target.index < 0) {
        target.exitCode = kExitPartial;
        target.error = where + " holds no message";
    }
    return target;
}

int runShow(const ShowOptions& options) {
    OpenedInput input = openInput(options.file, false, options.part);
    if (!input.usable()) return reportUnusable(options.file, input, false);
    warnDamaged(options.file, input);
    PathTarget message = findMessage(*input.session, options.index);
    if (message.error) printError(options.file, *message.error);
    if (message.exitCode != 0) return message.exitCode;
    MessageOptions settings;
    settings.body = bodyChoiceNames().at(options.format);
    settings.raw = options.raw;
    settings.noHeader = options.noHeader;
    settings.charset = charsetFromName(options.charset);
    // The module's text for a terminal is UTF-8 unless asked otherwise;
    // for a pipe or a file it stays in the charset the module gives it.
    if (!settings.readable() && settings.charset == kCharsetNone && ::isatty(STDOUT_FILENO) != 0) {
        settings.charset = kCharsetUtf8;
    }
    std::fflush(stdout);
    StdoutIo output;
    MessageWritten written = writeMessage(*message.session, message.index, settings, output.io());
    if (output.failed()) {
        printError(options.file, "cannot write to standard output");
        return kExitPartial;
    }
    if (written.status != kTnefOk) {
        printError(options.file, "the message can't be rendered: " + statusText(written.status));
        return kExitPartial;
    }
    if (written.warning) {
        printError(options.file, *written.warning);
        return kExitPartial;
    }
    return input.error || message.error ? kExitPartial : kExitOk;
}

}  // namespace

void addShowCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ShowOptions>();
    CLI::App* show = app.add_subcommand("show", "Render the message to standard output");
    show->add_option("FILE", options->file, kFileHelp)->required();
    addPartOption(*show, options->part);
    show->add_option("--format", options->format,
                     "Form of the message: auto (HTML when the message has HTML, else text), "
                     "text, html, or rtf (the module's RTF)")
        ->transform(CLI::IsMember({"auto", "text", "html", "rtf"}, CLI::ignore_case))
        ->option_text("auto|text|html|rtf");
    show->add_flag("--raw", options->raw,
                   "Show the message as the module renders it (its choice of body, RTF as "
                   "stored), not made readable");
    show->add_option("--charset", options->charset,
                     "Charset of the text (default: utf-8; with --raw or rtf, as stored unless "
                     "on a terminal)")
        ->check(charsetNameValidator())
        ->option_text("NAME");
    show->add_flag("--no-header", options->noHeader, "Show the body without the summary header");
    show->add_option("--index", options->index,
                     "The message to show: a message subfile or an embedded message, as numbered "
                     "by list (2, or 2/0 inside the message embedded as 2)")
        ->check(indexPathValidator());
    show->callback([options, &exitCode] { exitCode = runShow(*options); });
}

}  // namespace tnefcli
