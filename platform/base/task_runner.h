// A TaskRunner is the posting handle of one MessageLoop: the loop's incoming
// queue, shared by reference count between the loop and everyone who posts to
// it. It outlives the loop when others still hold it; once the loop has run
// its final drain the handle is closed, and posting to it fails instead of
// losing the task or touching the destroyed loop. Every operation may be
// called from any thread.
#ifndef TESSEL_PLATFORM_BASE_TASK_RUNNER_H_
#define TESSEL_PLATFORM_BASE_TASK_RUNNER_H_

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/base/callback.h"
#include "platform/base/location.h"
#include "platform/base/task_queue.h"

namespace base {

class MessageLoop;

class TaskRunner : public std::enable_shared_from_this<TaskRunner> {
 public:
  using Clock = std::chrono::steady_clock;

  TaskRunner(const TaskRunner&) = delete;
  TaskRunner& operator=(const TaskRunner&) = delete;
  ~TaskRunner();

  // Queues `task` behind every task posted before it. False, with the task
  // destroyed on the calling thread without running, when the task is empty
  // or the loop has closed after its final drain. `from_here` is accepted for
  // the callers' bookkeeping and not kept.
  bool PostTask(const tracked_objects::Location& from_here, Closure task);
  // Queues `task` to run no earlier than `delay` after this call (steady
  // clock); tasks due at the same moment run in posting order. A delay <= 0
  // is PostTask. Delays beyond a century count as a century. Same failure
  // rule as PostTask. A delayed task still in the future when its loop is
  // destroyed (or its thread stops) is destroyed without running.
  bool PostDelayedTask(const tracked_objects::Location& from_here, Closure task,
                       std::chrono::nanoseconds delay);
  // True on the thread that runs the loop (the one that constructed it).
  bool RunsTasksOnCurrentThread() const;
  // True once the loop has closed after its final drain: every post fails
  // from then on. Callable from any thread.
  bool closed() const;

  // The loop's thread name, fixed at construction.
  const std::string& thread_name() const { return thread_name_; }

 private:
  friend class MessageLoop;
  friend class Thread;
  struct DelayedTask {
    Clock::time_point due;
    std::uint64_t sequence;  // posting order among equal deadlines
    Closure task;
  };
  using Hook = std::shared_ptr<const std::function<void()>>;
  enum class Wait { kSleep, kDontSleep };

  TaskRunner(std::string thread_name, std::thread::id owner);

  // Moves every task that may run now (queued ones, then the due delayed
  // ones in deadline order) to the empty `out`. With nothing to run, it
  // returns false: at once for Wait::kDontSleep, and for Wait::kSleep when a
  // quit or the stop was asked (a Quit() request is consumed), otherwise it
  // sleeps until a post or the earliest deadline and looks again. An idle
  // loop frees the spare queue chunks of a past burst: at once without
  // sleeping, else after a quiet kTrimAfter (one more wake-up per burst).
  bool Take(TaskQueue& out, Wait wait, bool honour_quit);
  // With nothing left to run now, closes the handle and hands back the
  // delayed tasks still in the future (the caller destroys them); otherwise
  // false and nothing changes.
  bool CloseIfIdle(std::vector<DelayedTask>& future_tasks);
  // Moves the due delayed tasks to `queue_`. Needs mutex_.
  void MoveDueTasksLocked(Clock::time_point now);
  // Shrinks the delayed heap's storage once it is mostly unused, so a loop
  // holds little memory after a burst even while some tasks stay pending.
  // Needs mutex_; the caller frees `spare`.
  void GiveBackIdleStorageLocked(std::vector<DelayedTask>& spare);
  static bool RunsLater(const DelayedTask& a, const DelayedTask& b);
  // Applies `change` under the lock and wakes the loop's thread if it sleeps.
  template <typename Change>
  void ChangeStateAndWake(Change change);
  // Wakes the loop's thread when it sleeps, then calls `hook` (if any),
  // outside the lock and through a reference that keeps this alive.
  void WakeUp(bool wake_loop, Hook hook);

  void AskQuit();
  void AskQuitWhenIdle();
  void ForgetQuit();
  bool ConsumeQuit();
  void StopWhenIdle();
  bool stopping() const;
  void SetWakeUpHook(std::function<void()> hook);
  std::optional<std::chrono::nanoseconds> TimeUntilNextDelayedTask() const;

  const std::string thread_name_;
  const std::thread::id owner_;

  mutable std::mutex mutex_;  // guards everything below except quit_
  std::condition_variable wake_;      // signalled when sleeping_ is cleared
  TaskQueue queue_;                   // posted, not yet taken by the loop
  std::vector<DelayedTask> delayed_;  // min-heap by (due, sequence)
  std::uint64_t next_sequence_ = 0;
  Hook hook_;                    // called when work arrives for an idle loop
  bool sleeping_ = false;        // the loop's thread waits on wake_
  bool quit_when_idle_ = false;  // one-shot: ends the innermost Run()
  bool stopping_ = false;        // sticky: every Run() ends once idle
  bool closed_ = false;          // final drain done; posts fail
  // When an idle loop lets the spare chunks of a past burst go.
  std::optional<Clock::time_point> trim_at_;
  // Checked by the loop's thread after every task, so kept apart from the
  // line the producers write. Written under mutex_ too.
  alignas(64) std::atomic<bool> quit_{false};
};

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_TASK_RUNNER_H_
