// Messages to the user that several commands share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cli/open_input.h"

namespace tnefcli {

// "tnef-reader: FILE: what" on stderr.
void printError(const std::string& file, const std::string& what);

// Reports an input that could not be opened (as JSON on stdout with
// `json`, else on stderr) and returns its exit code.
int reportUnusable(const std::string& file, const OpenedInput& input, bool json);

// Tells on stderr that a stream is damaged and only partly read.
void warnDamaged(const std::string& file, const OpenedInput& input);

// Tells on stderr that the embedded message `where` ("2/1") is damaged and
// only partly read (`opened` kOk), or could not be opened at all.
void warnNested(const std::string& file, const std::string& where, tnefclient::Opened opened,
                const std::string& error);

// UTF-8 made safe to print on a terminal: control characters are shown as
// \xNN so that a name can't move the cursor or change colours.
std::string printable(std::string_view text);

}  // namespace tnefcli
