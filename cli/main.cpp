// tnef-reader: lists, extracts and renders what TNEF streams (winmail.dat)
// hold, through the reader module.
#include <CLI/CLI.hpp>

#include "cli/commands.h"
#include "cli/exit_codes.h"
#include "cli/pending_file.h"
#include "mail/mail_library.h"

int main(int argc, char** argv) {
    tnefcli::newFileMode();  // read the umask before any worker thread starts
    tnefmail::MailLibrary mail;
    CLI::App app{"Reads TNEF streams (winmail.dat): lists, extracts and renders what they hold.",
                 "tnef-reader"};
    app.set_version_flag("--version", "tnef-reader " TNEF_VERSION);
    app.require_subcommand(1);
    app.fallthrough(false);
    int exitCode = tnefcli::kExitOk;
    tnefcli::addListCommand(app, exitCode);
    tnefcli::addExtractCommand(app, exitCode);
    tnefcli::addShowCommand(app, exitCode);
    tnefcli::addPropsCommand(app, exitCode);
    tnefcli::addBatchCommand(app, exitCode);
    tnefcli::addUnwrapCommand(app, exitCode);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? tnefcli::kExitOk : tnefcli::kExitUsage;
    }
    return exitCode;
}
