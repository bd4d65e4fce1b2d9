// Opening one input for a command: the module, a host context, the session,
// and the exit code and words for an input that can't be opened.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/module_loader.h"
#include "cli/session.h"
#include "host/posix_host.h"

namespace tnefcli {

// A host context for the tool: error lines go to stderr prefixed with the
// file name, the OLE library is looked for beside the module.
std::unique_ptr<tnefhost::PosixHost> makeHost(const ReaderModule& module,
                                              const std::string& logPrefix);

struct OpenedInput {
    std::unique_ptr<tnefhost::PosixHost> host;
    std::unique_ptr<Session> session;
    int exitCode = 0;                  // non-zero: nothing can be read
    std::optional<int32_t> status;     // the module's open status, once it got that far
    std::optional<std::string> error;  // what went wrong, in words

    bool usable() const { return exitCode == 0; }
};

OpenedInput openInput(const std::string& file, bool rootEntry);

// Opens `file` in an existing host context (batch workers keep one each).
OpenedInput openInputWith(const ReaderModule& module, tnefhost::PosixHost& host,
                          const std::string& file, bool rootEntry);

// "standard input" for "-", else the path.
std::string displayName(const std::string& file);

}  // namespace tnefcli
