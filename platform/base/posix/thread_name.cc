#include "platform/base/thread_name.h"

#include <pthread.h>

namespace base {

void SetCurrentThreadName(const std::string& name) {
  // Linux keeps at most 15 bytes of a thread's name (16 with the NUL).
  constexpr std::size_t kLongestName = 15;
  pthread_setname_np(pthread_self(), CutAtCharacterBoundary(name, kLongestName).c_str());
}

}  // namespace base
