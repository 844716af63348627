#include "platform/base/location.h"

namespace tracked_objects {

// Kept out of line so that the return address is the caller's.
__attribute__((noinline)) const void* GetProgramCounter() {
  return __builtin_extract_return_addr(__builtin_return_address(0));
}

}  // namespace tracked_objects
