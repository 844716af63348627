// GenericThread is the library's PlatformThread: a handle on one message
// loop. A thread of ThreadType 0 posts to the host's user-interface loop; any
// other type starts an operating-system thread with a loop of its own, which
// lives as long as the object. Tasks run on the loop's thread in posting
// order. Any thread may dispatch; the key/value store belongs to the loop's
// thread. Made by GenericThreadFactory only, as a shared object.
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
class MessageLoop;
class Thread;
}  // namespace base

namespace tessel {

class TESSEL_API GenericThread : public tessel_gen::PlatformThread {
 public:
  // Type 0 takes the host's user-interface loop as it is now (none: the
  // thread drops every task) and keeps no name. Any other type starts a
  // thread named `name` (up to its first NUL byte) with a loop of its own.
  GenericThread(const std::string& name, tessel_gen::ThreadType type);
  // Destroys the store, then stops the owned thread: every task queued
  // before, and every task those post, runs first; then the thread is joined
  // (when the last owner is released inside one of the thread's own tasks,
  // the thread instead ends by itself once its queue is empty). A type-0
  // thread leaves the user-interface loop alone.
  ~GenericThread() override;
  GenericThread(const GenericThread&) = delete;
  GenericThread& operator=(const GenericThread&) = delete;

  // Blocks until `task` has run on this thread; its effects are visible on
  // return. On this thread itself, runs `task` at once. An exception thrown
  // by `task` is rethrown here. An empty task, or a thread without a loop:
  // returns at once without running anything. Any thread may call.
  void DispatchSync(std::function<void()> task) override;
  // Queues `task` and returns 0. An exception thrown by `task` is dropped.
  // An empty task, or a thread without a loop: the task is dropped. Any
  // thread may call.
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
  bool has_loop() const { return message_loop_ != nullptr; }

 private:
  std::unique_ptr<base::Thread> thread_;  // empty for type 0
  base::MessageLoop* message_loop_;       // tasks go here; may be null
  std::unordered_map<std::string, std::string> values_;
  const tessel_gen::ThreadType type_;
};

}  // namespace tessel

#endif  // TESSEL_COMMON_IMP_WIN_GENERIC_THREAD_H_
