// The C runtime's conversions between seconds since 1970-01-01 00:00:00 UTC
// and broken-down local time, in their thread-safe forms. The sources under
// platform/posix/ and platform/win/ are the only places that name them. Both
// read the process's time-zone setting and may be called from any thread at
// once.
#ifndef TESSEL_PLATFORM_LOCAL_TIME_H_
#define TESSEL_PLATFORM_LOCAL_TIME_H_

#include <climits>
#include <ctime>

namespace tessel_platform {

// The largest tm_year whose full year (tm_year + 1900) fits an int. A moment
// in a later year counts as one the conversions cannot handle.
constexpr int kMaxTmYear = INT_MAX - 1900;

// Fills *out with the local time of `seconds`. Returns false, with every
// field of *out set to -1, when the platform cannot convert the value or its
// year is beyond kMaxTmYear.
bool ToLocalTime(long long seconds, std::tm* out);

// Converts the local time in *fields to seconds, normalising out-of-range
// fields in place and filling in weekday and day of year. A positive
// tm_isdst reads the clock time as daylight time, 0 as standard time, a
// negative one lets the conversion decide. Returns -1 when it fails,
// including when the normalised year is beyond kMaxTmYear.
long long FromLocalTime(std::tm* fields);

// Sets every field of *out to -1: the result of a value that cannot be
// converted.
void MarkUnconverted(std::tm* out);

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_LOCAL_TIME_H_
