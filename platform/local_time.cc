#include "platform/local_time.h"

namespace tessel_platform {

void MarkUnconverted(std::tm* out) {
  out->tm_sec = out->tm_min = out->tm_hour = -1;
  out->tm_mday = out->tm_mon = out->tm_year = -1;
  out->tm_wday = out->tm_yday = out->tm_isdst = -1;
}

}  // namespace tessel_platform
