// FILETIME as ISO 8601 UTC.
#include <cstdio>

#include "client/tnef_client.h"

namespace tnefclient {

namespace {

constexpr uint64_t kTicksPerSecond = 10000000;
// Days from 1601-01-01 to 1970-01-01.
constexpr int64_t kDaysBefore1970 = 134774;

// Civil date of a day count from 1970-01-01 (proleptic Gregorian).
void civilFromDays(int64_t z, int64_t* year, unsigned* month, unsigned* day) {
    z += 719468;
    int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    auto doe = static_cast<unsigned>(z - era * 146097);
    unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    unsigned mp = (5 * doy + 2) / 153;
    *day = doy - (153 * mp + 2) / 5 + 1;
    *month = mp < 10 ? mp + 3 : mp - 9;
    *year = static_cast<int64_t>(yoe) + era * 400 + (*month <= 2 ? 1 : 0);
}

uint64_t fileTimeTicks(const uint8_t bytes[8]) {
    uint64_t ticks = 0;
    for (int i = 7; i >= 0; --i) ticks = (ticks << 8) | bytes[i];
    return ticks;
}

std::string ticksToIso(uint64_t ticks) {
    uint64_t seconds = ticks / kTicksPerSecond;
    auto days = static_cast<int64_t>(seconds / 86400) - kDaysBefore1970;
    uint64_t rest = seconds % 86400;
    int64_t year = 0;
    unsigned month = 0;
    unsigned day = 0;
    civilFromDays(days, &year, &month, &day);
    char text[48];
    std::snprintf(text, sizeof text, "%04lld-%02u-%02uT%02u:%02u:%02uZ",
                  static_cast<long long>(year), month, day, static_cast<unsigned>(rest / 3600),
                  static_cast<unsigned>(rest / 60 % 60), static_cast<unsigned>(rest % 60));
    return text;
}

}  // namespace

std::optional<std::string> fileTimeToIso(const uint8_t bytes[8]) {
    uint64_t ticks = fileTimeTicks(bytes);
    if (ticks == 0) return std::nullopt;
    return ticksToIso(ticks);
}

}  // namespace tnefclient
