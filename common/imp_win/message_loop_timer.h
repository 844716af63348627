// MessageLoopTimer is the library's working PlatformTimer: a host injects it
// instead of GenericTImer when the SDK core's timers must fire. Callbacks run
// on one thread, either a worker of the timer's own named "timer" or a
// GenericThread the host chooses (a type-0 thread: the user-interface loop),
// one at a time and never while the timer's lock is held. Every operation may
// be called from any thread, including from inside a callback.
//
// Timing follows the steady clock. A timer made at time t0 with interval i
// first fires at t0 + i; a repeating one then fires at t0 + k*i for growing k,
// so callbacks never drift. A callback that overruns one or more ticks makes
// the timer skip them: the next call is the first tick still ahead.
#ifndef TESSEL_COMMON_IMP_WIN_MESSAGE_LOOP_TIMER_H_
#define TESSEL_COMMON_IMP_WIN_MESSAGE_LOOP_TIMER_H_

#include <functional>
#include <memory>

#include "common/imp_win/generic_thread.h"
#include "common/tessel_export.h"
#include "gen/platform_timer.h"

namespace tessel {

class TESSEL_API MessageLoopTimer : public tessel_gen::PlatformTimer {
 public:
  // Starts a worker thread named "timer" on which every callback runs.
  MessageLoopTimer();
  // Callbacks run on `thread`. An empty thread, or one without a loop, makes
  // a timer that refuses every CreateTimer.
  explicit MessageLoopTimer(std::shared_ptr<GenericThread> thread);
  // Invalidates every timer. A callback running on another thread is waited
  // for; called from inside a callback, the destructor does not wait for that
  // callback, which then finishes on its own. Unrun callbacks are released
  // here; a running one is released on the callback thread when it returns.
  ~MessageLoopTimer() override;
  MessageLoopTimer(const MessageLoopTimer&) = delete;
  MessageLoopTimer& operator=(const MessageLoopTimer&) = delete;

  // Schedules `callback` `interval` seconds from now, and every `interval`
  // seconds after that when `repeats` is set (a repeating interval under one
  // millisecond counts as one millisecond; intervals beyond about 95 years
  // count as 95 years). Returns the timer's identifier, positive and unique
  // among this object's live timers. Refuses with 0, releasing `callback`
  // before returning, an empty callback, a negative, NaN or infinite
  // interval, and any call once the callback thread has stopped. An exception
  // thrown by a callback is dropped; a repeating timer keeps running.
  int CreateTimer(double interval, bool repeats, std::function<void()> callback) override;
  // Once this returns, the timer's callback is not started again. The
  // callback object is released at once, or, when the callback is running,
  // on the callback thread as it returns. Unknown, finished and already
  // invalidated identifiers are ignored.
  void InvalidateTimer(int timer_id) override;

 private:
  class Core;

  std::shared_ptr<GenericThread> thread_;
  // Shared with the tasks posted to the callback thread, which may outlive
  // this object in the thread's queue.
  std::shared_ptr<Core> core_;
};

}  // namespace tessel

#endif  // TESSEL_COMMON_IMP_WIN_MESSAGE_LOOP_TIMER_H_
