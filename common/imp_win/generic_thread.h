// GenericThread is the library's PlatformThread: a handle on one message
// loop, kept as the loop's reference-counted posting handle, never as a raw
// loop pointer. A thread of ThreadType 0 posts to the host's user-interface
// loop; any other type starts an operating-system thread with a loop of its
// own, which runs until the object is released and its queue has drained.
// Tasks run on the loop's thread in posting order. Any thread may dispatch;
// the key/value store belongs to the loop's thread. Made by
// GenericThreadFactory only, as a shared object.
#ifndef TESSEL_COMMON_IMP_WIN_GENERIC_THREAD_H_
#define TESSEL_COMMON_IMP_WIN_GENERIC_THREAD_H_

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "common/tessel_export.h"
#include "gen/platform_thread.h"
#include "gen/thread_type.h"

namespace base {
class TaskRunner;
class Thread;
}  // namespace base

namespace tessel {

class TESSEL_API GenericThread : public tessel_gen::PlatformThread {
 public:
  // Type 0 takes the host's user-interface loop as it is now (none: the
  // thread drops every task) and keeps no name. Any other type starts a
  // thread named `name` (up to its first NUL byte) with a loop of its own.
  GenericThread(const std::string& name, tessel_gen::ThreadType type);
  // Asks the owned thread to stop and returns without waiting for it: every
  // task queued before, and every task those post (also DispatchSync calls
  // back to the releasing thread), still runs; delayed tasks still in the
  // future are destroyed unrun. A process-wide reaper thread then joins it.
  // Tasks must not reach this object once its last owner has let go. A
  // type-0 thread leaves the user-interface loop alone.
  ~GenericThread() override;
  GenericThread(const GenericThread&) = delete;
  GenericThread& operator=(const GenericThread&) = delete;

  // Blocks until `task` has run on this thread and has been destroyed there
  // (with everything it captured); its effects are visible on return. An
  // exception thrown by `task` is rethrown here. On this thread itself,
  // runs `task` at once, so it overtakes this thread's earlier DispatchAsync
  // tasks that are still queued. Returns at once without running anything
  // for an empty task, a thread without a loop, or a loop that has closed
  // (its final drain is over). Any thread may call.
  void DispatchSync(std::function<void()> task) override;
  // Queues `task` and returns 0. An exception thrown by `task` is reported
  // to the shared logger at the error level and goes no further. An empty
  // task, a thread without a loop or a closed loop: the task is dropped (and
  // destroyed on the calling thread). Any thread may call.
  int DispatchAsync(std::function<void()> task) override;
  // Does nothing: tasks cannot be cancelled.
  void CancelTask(int task_id) override;
  tessel_gen::ThreadType type() override;
  // The name given at construction; empty for type 0.
  std::string name() override;
  // True when the calling thread runs this thread's loop (also when neither
  // has a loop).
  bool IsCurrentThread() override;
  // Stores `value` under `key` when called on this thread; elsewhere ignored.
  void set_value(const std::string& value, const std::string& key) override;
  // The value stored under `key`, or empty. Call on this thread only.
  std::string value_for_key(const std::string& key) override;

  // The loop's thread name, the key under which the factory registers this
  // thread; the empty string when the thread has no loop (see has_loop()).
  const std::string& thread_key() const;
  bool has_loop() const { return runner_ != nullptr; }
  // The posting handle of this thread's loop; null when it has none. Posting
  // through it fails once the loop has closed. Any thread may call.
  std::shared_ptr<base::TaskRunner> task_runner() const { return runner_; }

 private:
  std::unique_ptr<base::Thread> thread_;     // empty for type 0
  std::shared_ptr<base::TaskRunner> runner_;  // tasks go here; may be null
  std::unordered_map<std::string, std::string> values_;
  const tessel_gen::ThreadType type_;
};

}  // namespace tessel

#endif  // TESSEL_COMMON_IMP_WIN_GENERIC_THREAD_H_
