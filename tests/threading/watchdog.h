// Bounded waits for the threading tests: a fault shows up as a failed
// expectation after kWatchdog, never as a hung test run.
#ifndef TESSEL_TESTS_THREADING_WATCHDOG_H_
#define TESSEL_TESTS_THREADING_WATCHDOG_H_

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>

namespace threading_test {

constexpr std::chrono::seconds kWatchdog{60};

// True when `future` becomes ready within the watchdog's bound.
template <typename T>
bool Within(const std::future<T>& future) {
  return future.wait_for(kWatchdog) == std::future_status::ready;
}

// For waits whose failure leaves a thread blocked for good (joining it would
// hang the suite): report and end the process at once.
template <typename T>
void ReadyOrAbort(const std::future<T>& future, const char* what) {
  if (!Within(future)) {
    std::fprintf(stderr, "watchdog: %s did not happen within the bound\n", what);
    std::abort();
  }
}

// Runs `loop` on the calling thread until a task quits it; false when the
// watchdog had to quit it instead.
template <typename Loop>
bool RunGuarded(Loop& loop) {
  std::promise<void> returned;
  auto watchdog = std::async(std::launch::async, [&loop, done = returned.get_future()] {
    if (Within(done)) return false;
    loop.Quit();
    return true;
  });
  loop.Run();
  returned.set_value();
  return !watchdog.get();
}

}  // namespace threading_test

#endif  // TESSEL_TESTS_THREADING_WATCHDOG_H_
