#include "text/timestamps.h"

#include <cstdio>

namespace qf {

namespace {

// Days since 1970-01-01 to a civil date (Howard Hinnant's algorithm; proleptic Gregorian).
void civilFromDays(int64_t z, int64_t& y, unsigned& m, unsigned& d) {
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = static_cast<int64_t>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y += m <= 2;
}

} // namespace

std::string isoTimestamp(int64_t unixMs) {
    int64_t days = unixMs / 86400000;
    int64_t msOfDay = unixMs % 86400000;
    if (msOfDay < 0) {
        msOfDay += 86400000;
        --days;
    }
    int64_t year;
    unsigned month, day;
    civilFromDays(days, year, month, day);
    if (year < 1 || year > 9999) // no four-digit form: the Unix epoch is as good a "never" as any
        return "1970-01-01T00:00:00.000000Z";
    const auto seconds = static_cast<unsigned>(msOfDay / 1000);
    char out[40];
    std::snprintf(out, sizeof out, "%04d-%02u-%02uT%02u:%02u:%02u.%03u000Z", int(year), month, day, seconds / 3600,
                  seconds / 60 % 60, seconds % 60, unsigned(msOfDay % 1000));
    return out;
}

} // namespace qf
