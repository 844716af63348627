// PlatformThread is the SDK core's handle on one thread with a task queue.
// Tasks posted to it run on that thread in the order they were posted. The
// slot order of the virtual operations is part of the contract: the core is
// compiled against it.
#ifndef TESSEL_GEN_PLATFORM_THREAD_H_
#define TESSEL_GEN_PLATFORM_THREAD_H_

#include <functional>
#include <string>

#include "common/tessel_export.h"
#include "gen/thread_type.h"

namespace tessel_gen {

class TESSEL_API PlatformThread {
 public:
  virtual ~PlatformThread() = default;

  // Queues `task` and returns once it has run on this thread.
  virtual void DispatchSync(std::function<void()> task) = 0;
  // Queues `task` and returns at once with a task identifier.
  virtual int DispatchAsync(std::function<void()> task) = 0;
  virtual void CancelTask(int task_id) = 0;
  virtual ThreadType type() = 0;
  virtual std::string name() = 0;
  // True when the calling thread is this thread.
  virtual bool IsCurrentThread() = 0;
  // Stores `value` under `key`; note the order: value first, key second.
  virtual void set_value(const std::string& value, const std::string& key) = 0;
  virtual std::string value_for_key(const std::string& key) = 0;
};

}  // namespace tessel_gen

#endif  // TESSEL_GEN_PLATFORM_THREAD_H_
