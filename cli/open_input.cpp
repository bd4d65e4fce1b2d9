#include "cli/open_input.h"

#include "cli/exit_codes.h"

namespace tnefcli {

using namespace tnefclient;

std::string displayName(const std::string& file) {
    return file == "-" ? std::string("standard input") : file;
}

OpenedInput openInputWith(const ReaderModule& module, tnefhost::PosixHost& host,
                          const std::string& file, bool rootEntry) {
    OpenedInput opened;
    host.setLogPrefix(displayName(file));
    opened.session = std::make_unique<Session>(module, host.context());
    std::string error;
    OpenOptions options;
    options.rootEntry = rootEntry;
    Opened result = opened.session->open(file, options, &error);
    if (result != Opened::kUnreadable) opened.status = opened.session->openStatus();
    if (result != Opened::kOk) {
        opened.exitCode = kExitUnreadable;
        opened.error = error;
    } else if (opened.session->openStatus() != kTnefOk) {
        opened.error = statusText(opened.session->openStatus());
    }
    return opened;
}

OpenedInput openInput(const std::string& file, bool rootEntry) {
    std::string error;
    const ReaderModule* module = ReaderModule::load(&error);
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
