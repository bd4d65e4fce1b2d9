#include "cli/open_input.h"

#include <unistd.h>

#include "cli/exit_codes.h"
#include "cli/mail_parts.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

// Fills in what became of opening the session.
void settle(OpenedInput& opened, Opened result, const std::string& error) {
    if (result != Opened::kUnreadable) opened.status = opened.session->openStatus();
    if (result != Opened::kOk) {
        opened.exitCode = kExitUnreadable;
        opened.error = error;
    } else if (opened.session->openStatus() != kTnefOk) {
        opened.error = statusText(opened.session->openStatus());
    }
}

OpenedInput failedInput(int exitCode, const std::string& error) {
    OpenedInput failed;
    failed.exitCode = exitCode;
    failed.error = error;
    return failed;
}

}  // namespace

std::string displayName(const std::string& file) {
    return file == "-" ? std::string("standard input") : file;
}

OpenedInput openDecoded(const ReaderModule& module, tnefhost::PosixHost& host,
                        std::unique_ptr<tnefhost::HostIo> input, bool rootEntry) {
    OpenedInput opened;
    opened.session = std::make_unique<Session>(module, host.context());
    std::string error;
    OpenOptions options;
    options.rootEntry = rootEntry;
    settle(opened, opened.session->openIo(std::move(input), options, &error), error);
    return opened;
}

bool InputSource::isMail() const { return mail && tnefcli::isMail(mail->kind()); }

InputSource lookAt(const std::string& file) {
    InputSource source;
    source.file = file;
    if (file == "-" || isMailFile(file)) {
        std::string error;
        source.mail = tnefmail::MailInput::open(file, &error);
        if (!source.mail) source.error = error;
    }
    return source;
}

OpenedInput openSource(const ReaderModule& module, tnefhost::PosixHost& host, InputSource& source,
                       bool rootEntry, PartChoice part) {
    host.setLogPrefix(displayName(source.file));
    if (source.error) return failedInput(kExitUnreadable, *source.error);
    if (source.isMail()) return openMailPart(module, host, *source.mail, rootEntry, part);
    if (source.mail) {  // standard input, spooled, that is no mail
        int fd = ::dup(source.mail->fd());
        if (fd < 0) return failedInput(kExitUnreadable, "cannot read standard input");
        return openDecoded(module, host,
                           std::unique_ptr<tnefhost::HostIo>(
                               tnefhost::FileIo::adopt(fd, tnefhost::FileIo::Mode::kRead)),
                           rootEntry);
    }
    OpenedInput opened;
    opened.session = std::make_unique<Session>(module, host.context());
    std::string error;
    OpenOptions options;
    options.rootEntry = rootEntry;
    settle(opened, opened.session->open(source.file, options, &error), error);
    return opened;
}

OpenedInput openInput(InputSource& source, bool rootEntry, PartChoice part) {
    std::string error;
    const ReaderModule* module = ReaderModule::load(&error);
    if (module == nullptr) return failedInput(kExitUnreadable, error);
    auto host = makeHost(*module, displayName(source.file));
    OpenedInput opened = openSource(*module, *host, source, rootEntry, part);
    opened.host = std::move(host);
    return opened;
}

OpenedInput openInput(const std::string& file, bool rootEntry, PartChoice part) {
    InputSource source = lookAt(file);
    return openInput(source, rootEntry, part);
}

}  // namespace tnefcli
