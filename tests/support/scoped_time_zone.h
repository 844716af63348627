// Test helper: sets TZ (and calls tzset) for the lifetime of the object and
// restores the previous setting afterwards. Not thread-safe: construct it
// while no other thread converts local times.
#ifndef TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_
#define TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_

#include <cstdlib>
#include <ctime>
#include <string>

namespace test_support {

class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const std::string& zone) {
    const char* old = std::getenv("TZ");
    had_old_ = old != nullptr;
    if (had_old_) old_ = old;
    setenv("TZ", zone.c_str(), 1);
    tzset();
  }
  ~ScopedTimeZone() {
    if (had_old_) {
      setenv("TZ", old_.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  ScopedTimeZone(const ScopedTimeZone&) = delete;
  ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

 private:
  bool had_old_ = false;
  std::string old_;
};

}  // namespace test_support

#endif  // TESSEL_TESTS_SUPPORT_SCOPED_TIME_ZONE_H_
