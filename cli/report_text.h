// Messages to the user that several commands share.
#pragma once

#include <cstdint>
#include <string>

#include "cli/open_input.h"

namespace tnefcli {

// "tnef-reader: FILE: what" on stderr.
void printError(const std::string& file, const std::string& what);

// Reports an input that could not be opened (as JSON on stdout with
// `json`, else on stderr) and returns its exit code.
int reportUnusable(const std::string& file, const OpenedInput& input, bool json);

// Tells on stderr that a stream is damaged and only partly read.
void warnDamaged(const std::string& file, const OpenedInput& input);

}  // namespace tnefcli
