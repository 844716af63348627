// POSIX local-time conversions: localtime_r and mktime.
#include "platform/local_time.h"

#include <limits>
#include <type_traits>

namespace tessel_platform {

bool ToLocalTime(long long seconds, std::tm* out) {
  static_assert(std::is_signed<time_t>::value && sizeof(time_t) >= sizeof(long long),
                "time_t must hold every count");
  const time_t value = static_cast<time_t>(seconds);
  if (localtime_r(&value, out) == nullptr || out->tm_year > kMaxTmYear) {
    MarkUnconverted(out);
    return false;
  }
  return true;
}

long long FromLocalTime(std::tm* fields) {
  const time_t seconds = mktime(fields);
  return fields->tm_year > kMaxTmYear ? -1 : static_cast<long long>(seconds);
}

}  // namespace tessel_platform
