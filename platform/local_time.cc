// POSIX local-time conversions: localtime_r and mktime.
#include "platform/local_time.h"

#include <limits>
#include <type_traits>

namespace tessel_platform {

namespace {

void MarkUnconverted(std::tm* out) {
  out->tm_sec = out->tm_min = out->tm_hour = -1;
  out->tm_mday = out->tm_mon = out->tm_year = -1;
  out->tm_wday = out->tm_yday = out->tm_isdst = -1;
}

}  // namespace

bool ToLocalTime(long long seconds, std::tm* out) {
  static_assert(std::is_signed<time_t>::value && sizeof(time_t) >= sizeof(long long),
                "time_t must hold every count");
  const time_t value = static_cast<time_t>(seconds);
  if (localtime_r(&value, out) == nullptr) {
    MarkUnconverted(out);
    return false;
  }
  return true;
}

long long FromLocalTime(std::tm* fields) {
  return static_cast<long long>(mktime(fields));
}

}  // namespace tessel_platform
