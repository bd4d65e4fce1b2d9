#include "cli/open_input.h"

#include "cli/exit_codes.h"
#include "cli/status_text.h"

namespace tnefcli {

std::unique_ptr<tnefhost::PosixHost> makeHost(const ReaderModule& module,
                                              const std::string& logPrefix) {
    tnefhost::HostOptions options;
    options.libraryDir = module.folder;
    options.logToStderr = true;
    options.logPrefix = logPrefix;
    return std::make_unique<tnefhost::PosixHost>(options);
}

std::string displayName(const std::string& file) {
    return file == "-" ? std::string("standard input") : file;
}

OpenedInput openInputWith(const ReaderModule& module, tnefhost::PosixHost& host,
                          const std::string& file, bool rootEntry) {
    OpenedInput opened;
    host.setLogPrefix(displayName(file));
    opened.session = std::make_unique<Session>(module, host);
    std::string error;
    Session::Opened result = opened.session->open(file, rootEntry, &error);
    if (result != Session::Opened::kUnreadable) opened.status = opened.session->openStatus();
    if (result != Session::Opened::kOk) {
        opened.exitCode = kExitUnreadable;
        opened.error = error;
    } else if (opened.session->openStatus() != kTnefOk) {
        opened.error = statusText(opened.session->openStatus());
    }
    return opened;
}

OpenedInput openInput(const std::string& file, bool rootEntry) {
    std::string error;
    const ReaderModule* module = loadReaderModule(&error);
    if (module == nullptr) {
        OpenedInput failed;
        failed.exitCode = kExitUnreadable;
        failed.error = error;
        return failed;
    }
    auto host = makeHost(*module, displayName(file));
    OpenedInput opened = openInputWith(*module, *host, file, rootEntry);
    opened.host = std::move(host);
    return opened;
}

}  // namespace tnefcli
