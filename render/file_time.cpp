// FILETIME to the date text of the summary headers, in the local time of
// the process. Formatted by hand rather than through ctime or strftime so
// that the text is the same in every locale: English three-letter weekday
// and month, two-digit day with a leading zero, hh:mm:ss, four-digit year.
#include <stdio.h>
#include <time.h>

#include "reader/bytes.h"
#include "render/plain_message.h"

namespace {

// 100-nanosecond ticks from 1601-01-01 to 1970-01-01.
constexpr int64_t kUnixEpochTicks = 116444736000000000LL;
constexpr int64_t kTicksPerSecond = 10000000LL;

constexpr const char* kWeekdays[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Seconds since 1970: times before it count as 1970, and only the low 32
// bits of the count are kept, so times past 2106 wrap.
int64_t secondsSince1970(const uint8_t* fileTime) {
    auto ticks = static_cast<int64_t>(tnefLe64(fileTime));
    ticks = ticks >= kUnixEpochTicks ? ticks - kUnixEpochTicks : 0;
    return static_cast<int64_t>(static_cast<uint32_t>(ticks / kTicksPerSecond));
}

}  // namespace

char* tnefFormatFileTime(const uint8_t* fileTime, char* text) {
    text[0] = '\0';
    time_t seconds = static_cast<time_t>(secondsSince1970(fileTime));
    struct tm local {};
    if (localtime_r(&seconds, &local) == nullptr) return text;
    if (local.tm_wday < 0 || local.tm_wday > 6 || local.tm_mon < 0 || local.tm_mon > 11) {
        return text;
    }
    snprintf(text, kTnefDateTextSize, "%s %s %02d %02d:%02d:%02d %04d", kWeekdays[local.tm_wday],
             kMonths[local.tm_mon], local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
             local.tm_year + 1900);
    return text;
}
