// Windows local-time conversions: the C runtime's _localtime64_s and
// _mktime64, which cover 1970-01-01 00:00:00 UTC to 3000-12-31 23:59:59 UTC
// and refuse everything else.
#include "platform/local_time.h"

#include <time.h>

namespace tessel_platform {

bool ToLocalTime(long long seconds, std::tm* out) {
  const __time64_t value = static_cast<__time64_t>(seconds);
  if (_localtime64_s(out, &value) != 0) {
    MarkUnconverted(out);
    return false;
  }
  return true;
}

long long FromLocalTime(std::tm* fields) { return static_cast<long long>(_mktime64(fields)); }

}  // namespace tessel_platform
