#include "common/semaphore.h"

namespace tessel {

Semaphore::Semaphore() = default;
Semaphore::~Semaphore() = default;

void Semaphore::notify() {
  std::lock_guard<std::mutex> lock(mutex_);
  ++count_;
  condition_.notify_one();
}

void Semaphore::wait() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (count_ == 0) condition_.wait(lock);
  --count_;
}

}  // namespace tessel
