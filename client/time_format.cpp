// FILETIME as ISO 8601 UTC, and as the date text of the summary headers.
#include <cstdio>
#include <ctime>

#include "client/tnef_client.h"

namespace tnefclient {

namespace {

constexpr uint64_t kTicksPerSecond = 10000000;
// 100-nanosecond ticks from 1601-01-01 to 1970-01-01.
constexpr uint64_t kUnixEpochTicks = 116444736000000000ull;
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

std::optional<std::string> fileTimeToDateText(const uint8_t bytes[8]) {
    static constexpr const char* kWeekdays[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char* kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    uint64_t ticks = fileTimeTicks(bytes);
    if (ticks == 0) return std::nullopt;
    // As the module counts: times before 1970 are 1970, and the count of
    // seconds keeps its low 32 bits.
    uint64_t since1970 = ticks >= kUnixEpochTicks ? ticks - kUnixEpochTicks : 0;
    auto seconds = static_cast<time_t>(static_cast<uint32_t>(since1970 / kTicksPerSecond));
    struct tm local {};
    if (localtime_r(&seconds, &local) == nullptr) return std::nullopt;
    char text[64];
    std::snprintf(text, sizeof text, "%s %s %02d %02d:%02d:%02d %04d", kWeekdays[local.tm_wday % 7],
                  kMonths[local.tm_mon % 12], local.tm_mday, local.tm_hour, local.tm_min,
                  local.tm_sec, local.tm_year + 1900);
    return text;
}

}  // namespace tnefclient
