// ThreadType tells the platform which kind of thread the SDK core asks for:
// 0 is the main thread (the host's user-interface loop); any other value is a
// worker with a message loop of its own. No meaning is attached to which
// non-zero value is used.
#ifndef TESSEL_GEN_THREAD_TYPE_H_
#define TESSEL_GEN_THREAD_TYPE_H_

#include <cstdint>

namespace tessel_gen {

enum ThreadType : int32_t {
  ThreadTypeMain = 0,
  ThreadTypeWorker = 1,
};

}  // namespace tessel_gen

#endif  // TESSEL_GEN_THREAD_TYPE_H_
