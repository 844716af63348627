// Test helper: sets TZ (and calls tzset) for the lifetime of the object and
// restores the previous setting afterwards. Not thread-safe: construct it
// while no other thread converts local times.
#ifndef TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_
#define TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_

#include <cstdlib>
#include <ctime>
#include <string>

#include "support/test_platform.h"

namespace test_support {

class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const std::string& zone) {
    const char* old = std::getenv("TZ");
    had_old_ = old != nullptr;
    if (had_old_) old_ = old;
    SetEnvironment("TZ", zone.c_str());
    tzset();
  }
  ~ScopedTimeZone() {
    SetEnvironment("TZ", had_old_ ? old_.c_str() : nullptr);
    tzset();
  }
  ScopedTimeZone(const ScopedTimeZone&) = delete;
  ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

 private:
  bool had_old_ = false;
  std::string old_;
};

}  // namespace test_support

// Skips the rest of the test on Windows when `zone` is a zone name ("UTC"
// aside): Windows' C runtime reads only settings like "EST5EDT" from TZ.
#define TESSEL_SKIP_ZONE_NAME_ON_WINDOWS(zone)                                 \
  if (std::string(zone) == "UTC") {                                           \
  } else                                                                      \
    TESSEL_SKIP_ON_WINDOWS("Windows' C runtime takes no time-zone names from TZ")

#endif  // TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_
