// unwrap: mail written again with every TNEF part replaced by standard MIME.
// A message without TNEF, and a message none of whose TNEF parts could be
// read, is copied byte for byte; an mbox stays an mbox; with in-place, a
// file (or each file of a maildir) is written anew beside the old one,
// synced and renamed over it, and only when every TNEF part in it was
// unwrapped.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "client/tnef_client.h"
#include "mail/input_kind.h"

namespace tnefmail {

struct UnwrapRequest {
    std::string input = "-";            // a path, or "-" for standard input
    std::optional<std::string> output;  // a path; none: standard output
    bool inPlace = false;
};

struct UnwrapReport {
    InputKind kind = InputKind::kOther;
    size_t messages = 0;
    size_t tnefParts = 0;
    size_t replaced = 0;
    size_t filesRewritten = 0;
    // TNEF parts left as they were, and why, in words.
    std::vector<std::string> problems;
    // Why the request can't be carried out, or the output can't be written.
    std::optional<std::string> error;
    bool usageError = false;  // the request itself is wrong (error says how)
};

UnwrapReport unwrapMail(const tnefclient::ReaderModule& module, HostContext* host,
                        const UnwrapRequest& request);

}  // namespace tnefmail
