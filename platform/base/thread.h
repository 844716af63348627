// A Thread is an operating-system thread running a MessageLoop of its own,
// named after the thread. Once StartWithOptions() has returned true,
// message_loop() is valid and any thread may post to it. Destroying the
// Thread stops it: every task queued before the stop began, and every task
// those post, runs to completion before the thread ends and is joined.
// The object itself is used by one owner at a time.
#ifndef TESSEL_PLATFORM_BASE_THREAD_H_
#define TESSEL_PLATFORM_BASE_THREAD_H_

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>

#include <pthread.h>

#include "platform/base/message_loop.h"

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

  // Lets the loop run every queued task and the tasks they post, then joins
  // the thread; message_loop() is null afterwards. Called on the thread
  // itself (its last owner released inside one of its tasks), it cannot
  // join: the thread then finishes the queue and ends on its own.
  void Stop();

  const std::string& thread_name() const { return name_; }
  // The thread's loop while it runs, else null.
  MessageLoop* message_loop() const { return message_loop_; }

 private:
  struct Startup;
  static void* ThreadMain(void* startup);

  const std::string name_;
  MessageLoop* message_loop_ = nullptr;
  // Set by Stop(); shared with the running thread, which may outlive this
  // object when it stops itself. Until it is set, a stray Quit() of the loop
  // only makes the thread run its loop again.
  std::shared_ptr<std::atomic<bool>> stopping_;
  pthread_t thread_{};
  bool started_ = false;
};

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_THREAD_H_
