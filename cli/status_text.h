// The module's status numbers in words.
#pragma once

#include <cstdint>
#include <string>

namespace tnefcli {

// "stream failure: unreadable or malformed data (4)".
std::string statusText(int32_t status);

}  // namespace tnefcli
