// Opening one input for a command: the module, a host context, the session,
// and the exit code and words for an input that can't be opened. A mail
// input (a message, an mbox, a maildir) opens one of its TNEF parts.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "client/tnef_client.h"
#include "host/posix_host.h"
#include "mail/mail_input.h"

namespace tnefcli {

struct OpenedInput {
    std::unique_ptr<tnefhost::PosixHost> host;
    std::unique_ptr<tnefclient::Session> session;
    int exitCode = 0;                  // non-zero: nothing can be read
    std::optional<int32_t> status;     // the module's open status, once it got that far
    std::optional<std::string> error;  // what went wrong, in words
    // For mail: the TNEF part that was opened (its GMime pointers cleared).
    std::optional<tnefmail::TnefPart> part;

    bool usable() const { return exitCode == 0; }
};

// An input looked at before it is opened: mail (a message, an mbox, a
// maildir) or standard input is read through a MailInput (standard input
// spooled); any other file is left to the module as it is.
struct InputSource {
    std::string file;
    std::unique_ptr<tnefmail::MailInput> mail;
    std::optional<std::string> error;  // the input can't be read

    bool isMail() const;
};
InputSource lookAt(const std::string& file);

// Which TNEF part of a mail input to open; none: the only one, or the first
// with a note on stderr.
using PartChoice = std::optional<size_t>;

OpenedInput openInput(const std::string& file, bool rootEntry, PartChoice part = std::nullopt);
OpenedInput openInput(InputSource& source, bool rootEntry, PartChoice part = std::nullopt);

// Opens what `source` holds, a raw stream or the TNEF part `part` of mail,
// in an existing host context (batch workers keep one each).
OpenedInput openSource(const tnefclient::ReaderModule& module, tnefhost::PosixHost& host,
                       InputSource& source, bool rootEntry, PartChoice part = std::nullopt);

// Opens the TNEF stream in `input` (a part decoded from mail, or a spooled
// raw stream) in a session of `host`.
OpenedInput openDecoded(const tnefclient::ReaderModule& module, tnefhost::PosixHost& host,
                        std::unique_ptr<tnefhost::HostIo> input, bool rootEntry);

// "standard input" for "-", else the path.
std::string displayName(const std::string& file);

}  // namespace tnefcli
