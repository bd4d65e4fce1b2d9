// The --charset option: names of the HTML charset table ("utf-8",
// "windows-1252", "iso-10646" for 16-bit text, ...).
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "reader/host.h"

namespace tnefcli {

// Accepts a name of the table, ASCII case ignored.
CLI::Validator charsetNameValidator();

// The CharsetId of a name the validator accepted; 0 for an empty name.
CharsetId charsetFromName(const std::string& name);

}  // namespace tnefcli
