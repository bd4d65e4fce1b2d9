// Subfile indices that reach into embedded messages: "2/0" is subfile 0 of
// the message embedded as subfile 2.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/tnef_client.h"

namespace tnefcli {

using IndexPath = std::vector<int32_t>;

// "2/0" as {2, 0}; null unless every step is a non-negative number.
std::optional<IndexPath> parseIndexPath(const std::string& text);
// {2, 0} as "2/0".
std::string indexPathText(const IndexPath& path);
// Accepts what parseIndexPath accepts.
CLI::Validator indexPathValidator();

// Where an index path leads: the session that holds its last step, and
// that step's index there.
struct PathTarget {
    tnefclient::Session* session = nullptr;
    int32_t index = 0;
    int exitCode = 0;                  // non-zero: the path leads nowhere
    std::optional<std::string> error;  // why; or, with exitCode 0, a damaged stream on the way
    std::vector<std::unique_ptr<tnefclient::Session>> opened;  // the embedded messages on the way
};

// Follows `path` from `top`: every step but the last must be an embedded
// message, which is opened. A step outside its stream or not an embedded
// message is a usage error; an embedded message that can't be opened ends
// with kExitPartial.
PathTarget followIndexPath(tnefclient::Session& top, const IndexPath& path);

// Opens the embedded message at target.index, which becomes target.session;
// `where` names it in messages. False, with exitCode and error set, when it
// can't be opened.
bool enterEmbeddedMessage(PathTarget& target, const std::string& where);

}  // namespace tnefcli
