#include <cstdlib>

#include "support/test_platform.h"

namespace test_support {

void SetEnvironment(const char* name, const char* value) {
  if (value != nullptr) {
    setenv(name, value, 1);
  } else {
    unsetenv(name);
  }
}

}  // namespace test_support
