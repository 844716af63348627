// A Thread is an operating-system thread running a MessageLoop of its own,
// named after the thread. Once StartWithOptions() has returned true,
// task_runner() is valid and any thread may post to it. Stopping is a
// sticky state of the loop's queue: every task queued before the stop, and
// every task those post, runs to completion (delayed tasks still in the
// future are destroyed without running), then the loop closes its handle and
// the thread ends. The object itself is used by one owner at a time.
#ifndef TESSEL_PLATFORM_BASE_THREAD_H_
#define TESSEL_PLATFORM_BASE_THREAD_H_

#include <cstddef>
#include <memory>
#include <string>

#include <pthread.h>

#include "platform/base/message_loop.h"
#include "platform/base/task_runner.h"

namespace base {

class Thread {
 public:
  struct Options {
    MessageLoop::Type message_loop_type = MessageLoop::TYPE_DEFAULT;
    std::size_t stack_size = 0;  // 0: the platform's default
  };

  // `name` is copied; a null name is taken as empty. Nothing starts yet.
  explicit Thread(const char* name);
  // Stop(), see there.
  ~Thread();
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  // Starts the thread and returns once its loop exists. False (and no loop)
  // when the thread cannot be created or was started before.
  bool StartWithOptions(const Options& options);

  // Asks the loop to end once it is idle, at every nesting level of Run(),
  // and returns at once. Later calls do nothing more.
  void StopSoon();
  // StopSoon(), then joins the thread; message_loop() and task_runner() are
  // empty afterwards. Called on the thread itself (its last owner released
  // inside one of its tasks), it cannot join: the thread then finishes the
  // queue and ends on its own.
  void Stop();

  const std::string& thread_name() const { return name_; }
  // The thread's loop until Stop() or StopSoon(), else null. Only good while
  // the thread runs; post through task_runner() instead.
  MessageLoop* message_loop() const { return message_loop_; }
  // The loop's posting handle until Stop(), else null.
  std::shared_ptr<TaskRunner> task_runner() const { return runner_; }

 private:
  struct Startup;
  static void* ThreadMain(void* startup);

  const std::string name_;
  MessageLoop* message_loop_ = nullptr;
  std::shared_ptr<TaskRunner> runner_;
  pthread_t thread_{};
  bool started_ = false;
};

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_THREAD_H_
