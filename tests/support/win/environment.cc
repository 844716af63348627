#include <cstdlib>

#include "support/test_platform.h"

namespace test_support {

// The C runtime's copy of the environment, which its time functions read;
// an empty value removes the variable.
void SetEnvironment(const char* name, const char* value) {
  _putenv_s(name, value != nullptr ? value : "");
}

}  // namespace test_support
