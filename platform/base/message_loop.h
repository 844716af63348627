// A MessageLoop runs the tasks posted to it, one at a time and in the order
// they were posted, on the thread that runs it. Any thread may post; posting
// takes a short lock and wakes the loop's thread only when it sleeps, and no
// lock is held while a task runs. A loop is bound to the thread that
// constructs it (MessageLoop::current() there) and must be run and destroyed
// on that thread. A loop of the user-interface type constructed on the host's
// main thread is what GetUIMessageLoop() returns while it lives.
#ifndef TESSEL_PLATFORM_BASE_MESSAGE_LOOP_H_
#define TESSEL_PLATFORM_BASE_MESSAGE_LOOP_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/callback.h"
#include "platform/base/location.h"

namespace base {

class MessageLoop {
 public:
  enum Type {
    TYPE_DEFAULT = 0,
    TYPE_UI = 1,
    TYPE_IO = 2,
  };

  // Binds the new loop to the calling thread unless that thread already has
  // a current loop. A TYPE_UI loop also becomes the user-interface loop unless
  // another one is registered already.
  explicit MessageLoop(Type type = TYPE_DEFAULT, std::string thread_name = std::string());
  // Runs the tasks still queued (and those they post) before going away, so
  // that nothing posted is lost; then unbinds the loop from its thread and
  // from the user-interface registration.
  ~MessageLoop();
  MessageLoop(const MessageLoop&) = delete;
  MessageLoop& operator=(const MessageLoop&) = delete;

  // The loop bound to the calling thread, or null.
  static MessageLoop* current();

  // Queues `task` behind every task posted before it. Callable from any
  // thread. An empty task is dropped.
  void PostTask(const tracked_objects::Location& from_here, Closure task);

  // Runs tasks, sleeping while there are none, until Quit() or, once the
  // queue is empty, QuitWhenIdle(). Call on the loop's thread only.
  void Run();
  // Runs queued tasks, and the tasks they post, until the queue is empty;
  // never sleeps. Call on the loop's thread only.
  void RunUntilIdle();
  // Makes the innermost Run() return after the task in progress; tasks left
  // in the queue stay there. Callable from any thread.
  void Quit();
  // Makes the innermost Run() return once the queue is empty. Callable from
  // any thread.
  void QuitWhenIdle();

  Type type() const { return type_; }
  const std::string& thread_name() const { return thread_name_; }

 private:
  struct PendingTask {
    Closure task;
    tracked_objects::Location posted_from;
  };
  class IncomingQueue;

  enum class Wait { kSleep, kDontSleep };
  enum class Quitting { kHonour, kIgnore };
  // Runs queued tasks in order until the queue is empty (Wait::kDontSleep),
  // or until a quit request (Wait::kSleep; Quitting::kHonour is then needed).
  void RunTasks(Wait wait, Quitting quitting);
  void RunNextTask();

  const Type type_;
  const std::string thread_name_;
  // Shared with posting threads that are about to wake the loop, so that the
  // wake-up stays valid even if the loop is destroyed meanwhile.
  const std::shared_ptr<IncomingQueue> incoming_;
  // Only the loop's thread touches these.
  std::vector<PendingTask> batch_;  // tasks taken from incoming_, run in order
  std::size_t next_ = 0;            // index in batch_ of the next task to run
  bool bound_to_thread_ = false;    // this loop is its thread's current()
};

// The host's user-interface loop, or null when the host has none.
MessageLoop* GetUIMessageLoop();

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_MESSAGE_LOOP_H_
