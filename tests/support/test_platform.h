// What the test programs need to know of the system they run on, and the few
// calls that differ between systems (implemented in support/posix/ and
// support/win/, chosen by the build).
#ifndef TESSEL_TESTS_SUPPORT_TEST_PLATFORM_H_
#define TESSEL_TESTS_SUPPORT_TEST_PLATFORM_H_

#include <gtest/gtest.h>

namespace test_support {

// Set by the build for test programs that run on Windows.
constexpr bool kOnWindows = TESSEL_TEST_ON_WINDOWS != 0;

// Sets (or, with a null value, removes) an environment variable of the
// process. Not thread-safe.
void SetEnvironment(const char* name, const char* value);

}  // namespace test_support

// Skips the rest of the test on Windows, giving the reason.
#define TESSEL_SKIP_ON_WINDOWS(reason) \
  if (!::test_support::kOnWindows) {    \
  } else                                \
    GTEST_SKIP() << (reason)

#endif  // TESSEL_TESTS_SUPPORT_TEST_PLATFORM_H_
