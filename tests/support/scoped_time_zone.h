// Test helper: sets TZ (and calls tzset) for the lifetime of the object and
// restores the previous setting afterwards. Not thread-safe: construct it
// while no other thread converts local times.
#ifndef TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_
#define TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

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

// Whether the C runtime of the system reads `zone` from TZ. Windows' runtime
// reads only rule forms such as "EST5EDT" or "LHS-10:30" (three-letter names,
// US daylight-saving dates whatever the names), no zone names such as
// "Europe/Berlin".
inline bool ZoneReadable(const std::string& zone) {
  return !kOnWindows || zone.find('/') == std::string::npos;
}

// The cases of `all` whose zone (given by `zoneOf`) the runtime reads.
template <typename Case, typename ZoneOf>
std::vector<Case> ReadableZones(const std::vector<Case>& all, ZoneOf zoneOf) {
  std::vector<Case> kept;
  for (const Case& c : all) {
    if (ZoneReadable(zoneOf(c))) kept.push_back(c);
  }
  return kept;
}

}  // namespace test_support

#endif  // TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_
