// Opening one input for a command: the module, a host context, the session,
// and the exit code and words for an input that can't be opened.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "client/tnef_client.h"
#include "host/posix_host.h"

namespace tnefcli {

struct OpenedInput {
    std::unique_ptr<tnefhost::PosixHost> host;
    std::unique_ptr<tnefclient::Session> session;
    int exitCode = 0;                  // non-zero: nothing can be read
    std::optional<int32_t> status;     // the module's open status, once it got that far
    std::optional<std::string> error;  // what went wrong, in words

    bool usable() const { return exitCode == 0; }
};

OpenedInput openInput(const std::string& file, bool rootEntry);

// Opens `file` in an existing host context (batch workers keep one each).
OpenedInput openInputWith(const tnefclient::ReaderModule& module, tnefhost::PosixHost& host,
                          const std::string& file, bool rootEntry);

// "standard input" for "-", else the path.
std::string displayName(const std::string& file);

}  // namespace tnefcli
