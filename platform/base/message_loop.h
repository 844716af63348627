// A MessageLoop runs the tasks posted to it, one at a time and in the order
// they were posted, on the thread that runs it; delayed tasks run once due.
// Any thread may post, through the loop or through its TaskRunner handle;
// posting takes a short lock and wakes the loop's thread only when it
// sleeps, and no lock is held while a task runs. A loop is bound to the
// thread that constructs it (MessageLoop::current() there) and must be run
// and destroyed on that thread. A loop of the user-interface type
// constructed on the host's main thread is what GetUIMessageLoop() returns
// while it lives.
//
// Driving a loop from a native event loop. A host whose main thread runs its
// own event loop registers a wake-up hook; the loop calls it, from whatever
// thread posted and never under a lock, when work arrives for an idle loop
// and when its earliest delayed deadline moves earlier. The hook only tells
// the native loop to come round; the native loop then calls RunUntilIdle()
// on the main thread and re-arms its timer from TimeUntilNextDelayedTask():
//
//   base::MessageLoop ui(base::MessageLoop::TYPE_UI, "main");
//   int wake_fd = eventfd(0, EFD_NONBLOCK);
//   ui.SetWakeUpHook([wake_fd] { uint64_t one = 1; write(wake_fd, &one, 8); });
//   for (;;) {
//     ui.RunUntilIdle();
//     auto next = ui.TimeUntilNextDelayedTask();  // nullopt: nothing pending
//     int timeout_ms = next ? CeilToMilliseconds(*next) : -1;
//     poll(&wake_pollfd, 1, timeout_ms);          // plus the host's own fds
//     uint64_t count; read(wake_fd, &count, 8);
//   }
//   ui.SetWakeUpHook(nullptr);
#ifndef TESSEL_PLATFORM_BASE_MESSAGE_LOOP_H_
#define TESSEL_PLATFORM_BASE_MESSAGE_LOOP_H_

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/base/callback.h"
#include "platform/base/location.h"
#include "platform/base/task_queue.h"
#include "platform/base/task_runner.h"

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
  // The final drain: runs every queued task, the tasks they post and the
  // delayed tasks that are due, until nothing more may run now; then closes
  // the handle (later posts fail) and destroys, without running them, the
  // delayed tasks still in the future. Finally unbinds the loop from its
  // thread and from the user-interface registration.
  ~MessageLoop();
  MessageLoop(const MessageLoop&) = delete;
  MessageLoop& operator=(const MessageLoop&) = delete;

  // The loop bound to the calling thread, or null.
  static MessageLoop* current();

  // The loop's posting handle; the same object for the loop's whole life.
  const std::shared_ptr<TaskRunner>& task_runner() const { return runner_; }

  // As TaskRunner::PostTask and PostDelayedTask, for callers that know the
  // loop is alive. Callable from any thread.
  void PostTask(const tracked_objects::Location& from_here, Closure task);
  void PostDelayedTask(const tracked_objects::Location& from_here, Closure task,
                       std::chrono::nanoseconds delay);

  // Runs tasks, sleeping while none may run (until the earliest delayed
  // deadline, or a post), until Quit(), QuitWhenIdle() once nothing may run,
  // or the owning thread's stop. Call on the loop's thread only.
  void Run();
  // Runs the tasks that may run now, and those they post, until none is
  // left; never sleeps, and leaves a pending Quit() to the next Run(). Call
  // on the loop's thread only.
  void RunUntilIdle();
  // Makes the innermost Run() return after the task in progress; tasks left
  // in the queue stay there. Callable from any thread.
  void Quit();
  // Makes the innermost Run() return once nothing may run. Callable from any
  // thread.
  void QuitWhenIdle();

  // Installs the wake-up hook described at the top of this file; an empty
  // function removes it. A call already under way on another thread may
  // still finish after the hook has been replaced. Callable from any thread.
  void SetWakeUpHook(std::function<void()> hook);
  // How long until the earliest delayed task is due: nullopt when none is
  // pending, zero when one is due now. Call on the loop's thread.
  std::optional<std::chrono::nanoseconds> TimeUntilNextDelayedTask() const;

  Type type() const { return type_; }
  const std::string& thread_name() const { return runner_->thread_name(); }

 private:
  friend class Thread;
  void RunTasks(TaskRunner::Wait wait, bool honour_quit);

  const Type type_;
  const std::shared_ptr<TaskRunner> runner_;
  TaskQueue batch_;  // taken from runner_, run in order; loop's thread only
  bool bound_to_thread_ = false;  // this loop is its thread's current()
};

// The host's user-interface loop, or null when the host has none. The
// pointer is only good while that loop lives; to post, use the handle below.
MessageLoop* GetUIMessageLoop();
// The posting handle of the user-interface loop, or null when there is none.
std::shared_ptr<TaskRunner> GetUIMessageLoopTaskRunner();

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_MESSAGE_LOOP_H_
