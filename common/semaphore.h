// Semaphore is a counting semaphore: wait() blocks until a notify() is
// available and consumes it. Signals are counted, so a notify() that comes
// before its wait() is not lost. Any number of threads may call notify() and
// wait() at once. Not copyable or movable; it must not be destroyed while a
// thread still waits on or signals it.
#ifndef TESSEL_COMMON_SEMAPHORE_H_
#define TESSEL_COMMON_SEMAPHORE_H_

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "common/tessel_export.h"

namespace tessel {

class TESSEL_API Semaphore {
 public:
  Semaphore();
  ~Semaphore();
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  // Adds one signal and wakes at most one waiter. Throws std::system_error if
  // the mutex cannot be locked.
  void notify();
  // Blocks until a signal is available, then consumes it. No time-out.
  // Throws std::system_error if a primitive fails; the mutex is released as
  // the exception leaves.
  void wait();

 private:
  uint32_t count_ = 0;                 // signals given and not yet consumed
  std::mutex mutex_;                   // guards count_
  std::condition_variable condition_;  // wakes waiters when count_ rises
};

}  // namespace tessel

#endif  // TESSEL_COMMON_SEMAPHORE_H_
