// FILETIME (100-ns ticks since 1601-01-01 UTC, little-endian) as ISO 8601.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tnefcli {

uint64_t fileTimeTicks(const uint8_t bytes[8]);

// "2009-05-04T10:20:30Z"; nullopt for the all-zero time, which means none.
std::optional<std::string> fileTimeToIso(const uint8_t bytes[8]);
std::string ticksToIso(uint64_t ticks);

}  // namespace tnefcli
