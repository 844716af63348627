// MessageLoopTimer: when callbacks run, on which thread, and when their
// callables are released.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_set>
#include <vector>

#include "common/imp_win/generic_thread_factory.h"
#include "common/imp_win/message_loop_timer.h"
#include "platform/base/message_loop.h"
#include "support/test_platform.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Every wait is bounded: a fault shows up as a failed expectation.
constexpr auto kWatchdog = std::chrono::seconds(60);

// What a Tracker has seen so far.
struct Seen {
  std::vector<Clock::time_point> calls;  // when each call started
  std::thread::id called_on;             // thread of the last call
  int releases = 0;                      // callables released
  std::thread::id released_on;           // thread of the last release
  int count() const { return static_cast<int>(calls.size()); }
};

// Watches the callbacks that Callback() makes.
class Tracker : public std::enable_shared_from_this<Tracker> {
 public:
  // A callback that records its call, then runs `body` (given the call's
  // number, from 1).
  std::function<void()> Callback(std::function<void(int)> body = {}) {
    auto self = shared_from_this();
    std::shared_ptr<void> token(nullptr, [self](void*) {
      self->Record([](Seen& seen) {
        ++seen.releases;
        seen.released_on = std::this_thread::get_id();
      });
    });
    return [self, token, body] {
      int call = 0;
      self->Record([&call](Seen& seen) {
        seen.calls.push_back(Clock::now());
        seen.called_on = std::this_thread::get_id();
        call = seen.count();
      });
      if (body) body(call);
    };
  }

  // Waits until `done` holds; false when the watchdog expires first.
  bool WaitUntil(const std::function<bool(const Seen&)>& done) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kWatchdog, [&] { return done(seen_); });
  }
  bool WaitForCalls(int n) {
    return WaitUntil([n](const Seen& seen) { return seen.count() >= n; });
  }
  bool WaitForRelease(int n = 1) {
    return WaitUntil([n](const Seen& seen) { return seen.releases >= n; });
  }
  Seen seen() {
    std::lock_guard<std::mutex> lock(mutex_);
    return seen_;
  }

 private:
  template <typename Change>
  void Record(Change change) {
    std::lock_guard<std::mutex> lock(mutex_);
    change(seen_);
    changed_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  Seen seen_;
};

std::shared_ptr<Tracker> NewTracker() { return std::make_shared<Tracker>(); }

// Lets every tick of `timer` due within `span` from now pass: a one-shot
// timer of the same object posted behind them has run once this returns.
void LetTicksPass(tessel::MessageLoopTimer& timer, milliseconds span) {
  auto marker = NewTracker();
  ASSERT_GT(timer.CreateTimer(std::chrono::duration<double>(span).count(), false,
                              marker->Callback()),
            0);
  ASSERT_TRUE(marker->WaitForCalls(1));
}

TEST(MessageLoopTimer, RefusesBadArgumentsAndReleasesTheCallbackAtOnce) {
  tessel::MessageLoopTimer timer;
  tessel::MessageLoopTimer without_thread(nullptr);
  const double kInf = std::numeric_limits<double>::infinity();
  for (double interval : {-1.0, -1e-9, kInf, -kInf, std::nan(""), 0.01}) {
    for (bool repeats : {false, true}) {
      auto tracker = NewTracker();
      auto& refusing = interval == 0.01 ? without_thread : timer;
      EXPECT_EQ(refusing.CreateTimer(interval, repeats, tracker->Callback()), 0) << interval;
      EXPECT_EQ(tracker->seen().releases, 1) << interval;
    }
  }
  EXPECT_EQ(timer.CreateTimer(0.01, true, std::function<void()>()), 0);
  without_thread.InvalidateTimer(1);  // unknown identifiers are ignored
}

// A tick is never early: one-shot after its interval, repeating ones at
// start + k * interval, and never more often than every millisecond.
TEST(MessageLoopTimer, FiresNoEarlierThanDueOnTheTimerThread) {
  tessel::MessageLoopTimer timer;
  auto once = NewTracker();
  auto often = NewTracker();
  const Clock::time_point start = Clock::now();
  const int id = timer.CreateTimer(0.03, false, once->Callback());
  const int often_id = timer.CreateTimer(0.0, true, often->Callback());
  ASSERT_TRUE(once->WaitForRelease());
  timer.InvalidateTimer(often_id);
  timer.InvalidateTimer(id);  // finished: ignored
  const Seen seen = once->seen();
  ASSERT_EQ(seen.count(), 1);
  EXPECT_GE(seen.calls[0] - start, milliseconds(30));
  EXPECT_NE(seen.called_on, std::this_thread::get_id());
  EXPECT_EQ(seen.released_on, seen.called_on);
  const Seen repeated = often->seen();
  for (int i = 0; i < repeated.count(); ++i) {
    EXPECT_GE(repeated.calls[i] - start, milliseconds(i + 1)) << "call " << i + 1;
  }
}

// Ticks stay in phase with the first one, whatever each callback costs. A
// loaded machine may make single ticks late, or skip some.
TEST(MessageLoopTimer, RepeatsWithoutDrift) {
  TESSEL_SKIP_ON_WINDOWS("waits there end on the system's millisecond ticks, which spread "
                         "every call over the 5 ms period");
  tessel::MessageLoopTimer timer;
  auto tracker = NewTracker();
  const auto period = milliseconds(5);
  const Clock::time_point start = Clock::now();
  const int id = timer.CreateTimer(0.005, true, tracker->Callback([](int) {
    std::this_thread::sleep_for(std::chrono::microseconds(500));  // some work
  }));
  ASSERT_TRUE(tracker->WaitForCalls(200));
  timer.InvalidateTimer(id);
  const Seen seen = tracker->seen();
  std::vector<Clock::duration> phases;
  for (int i = 0; i < 200; ++i) {
    const Clock::duration since_start = seen.calls[i] - start;
    EXPECT_GE(since_start, period * (i + 1)) << "call " << i + 1;
    phases.push_back(since_start % period);
  }
  // The platform's least wake-up delay (a whole millisecond on some) is
  // not drift. A drifting timer's calls wander evenly over the period: about
  // a fifth of them would fall into the fifth after that least delay.
  const Clock::duration least = *std::min_element(phases.begin(), phases.end());
  const auto in_phase = std::count_if(phases.begin(), phases.end(), [&](Clock::duration phase) {
    return phase < least + period / 5;
  });
  EXPECT_GT(in_phase, 60);
}

// A callback that overruns two ticks is not followed by calls back to back:
// the next call is the next tick still ahead.
TEST(MessageLoopTimer, SkipsTicksACallbackOverran) {
  tessel::MessageLoopTimer timer;
  auto tracker = NewTracker();
  const auto period = milliseconds(10);
  const Clock::time_point start = Clock::now();
  const int id = timer.CreateTimer(0.01, true, tracker->Callback([](int call) {
    if (call == 1) std::this_thread::sleep_for(milliseconds(25));
  }));
  ASSERT_TRUE(tracker->WaitForCalls(2));
  timer.InvalidateTimer(id);
  const Seen seen = tracker->seen();
  const auto ticks_overrun = (seen.calls[0] - start + milliseconds(25)) / period;
  EXPECT_GE(seen.calls[1] - start, period * (ticks_overrun + 1));
}

// Invalidated before, during and between callbacks of a 1 ms timer.
TEST(MessageLoopTimer, InvalidatedFromAnotherThreadNeverStartsAgain) {
  tessel::MessageLoopTimer timer;
  std::vector<std::shared_ptr<Tracker>> trackers;
  std::vector<int> calls;
  for (int round = 0; round < 30; ++round) {
    trackers.push_back(NewTracker());
    const int id = timer.CreateTimer(0.001, true, trackers.back()->Callback());
    ASSERT_TRUE(trackers.back()->WaitForCalls(round % 3));
    timer.InvalidateTimer(id);
    calls.push_back(trackers.back()->seen().count());
  }
  LetTicksPass(timer, milliseconds(20));
  for (std::size_t i = 0; i < trackers.size(); ++i) {
    EXPECT_EQ(trackers[i]->seen().count(), calls[i]) << "round " << i;
    EXPECT_TRUE(trackers[i]->WaitForRelease()) << "round " << i;
  }
}

TEST(MessageLoopTimer, InvalidatedInsideItsOwnCallbackReleasesItOnTheTimerThread) {
  tessel::MessageLoopTimer timer;
  auto tracker = NewTracker();
  std::atomic<int> id{0};
  id = timer.CreateTimer(0.01, true, tracker->Callback([&](int) { timer.InvalidateTimer(id); }));
  ASSERT_TRUE(tracker->WaitForRelease());
  LetTicksPass(timer, milliseconds(30));
  const Seen seen = tracker->seen();
  EXPECT_EQ(seen.count(), 1);
  EXPECT_EQ(seen.released_on, seen.called_on);
}

TEST(MessageLoopTimer, DestructorWaitsForARunningCallback) {
  auto timer = std::make_unique<tessel::MessageLoopTimer>();
  auto tracker = NewTracker();
  std::atomic<bool> destroying{false};
  std::atomic<bool> finished{false};
  timer->CreateTimer(0.001, true, tracker->Callback([&](int) {
    const Clock::time_point bound = Clock::now() + kWatchdog;
    while (!destroying && Clock::now() < bound) std::this_thread::yield();
    std::this_thread::sleep_for(milliseconds(20));  // still busy in the destructor
    finished = true;
  }));
  ASSERT_TRUE(tracker->WaitForCalls(1));
  destroying = true;
  timer.reset();
  EXPECT_TRUE(finished);
  const Seen seen = tracker->seen();
  EXPECT_EQ(seen.releases, 1);  // before the destructor returned
  EXPECT_EQ(seen.count(), 1);
}

TEST(MessageLoopTimer, DestroyedInsideItsOwnCallbackDoesNotDeadlock) {
  auto tracker = NewTracker();
  auto owner = std::make_shared<tessel::MessageLoopTimer>();
  owner->CreateTimer(0.001, true, tracker->Callback([&owner](int) { owner.reset(); }));
  ASSERT_TRUE(tracker->WaitForRelease());
  const Seen seen = tracker->seen();
  EXPECT_EQ(seen.count(), 1);
  EXPECT_EQ(seen.released_on, seen.called_on);
}

// Identifiers stay positive and distinct; the invalidated half (due far
// later) is released at once and never fires, the other half fires once.
TEST(MessageLoopTimer, HundredThousandPendingTimers) {
  constexpr int kTimers = 100000;
  tessel::MessageLoopTimer timer;
  auto tracker = NewTracker();
  std::unordered_set<int> ids;
  std::vector<int> by_index;
  for (int i = 0; i < kTimers; ++i) {
    const int id = timer.CreateTimer(i % 2 == 0 ? (i % 50) * 1e-3 : 30.0, false,
                                     tracker->Callback());
    ASSERT_GT(id, 0);
    ids.insert(id);
    by_index.push_back(id);
  }
  EXPECT_EQ(ids.size(), std::size_t(kTimers));
  for (int i = 1; i < kTimers; i += 2) timer.InvalidateTimer(by_index[i]);
  EXPECT_TRUE(tracker->WaitForRelease(kTimers));
  LetTicksPass(timer, milliseconds(60));
  EXPECT_EQ(tracker->seen().count(), kTimers / 2);
}

// On the user-interface loop, callbacks run inside the host's Run().
TEST(MessageLoopTimer, RunsOnTheUserInterfaceLoop) {
  base::MessageLoop ui(base::MessageLoop::TYPE_UI, "ui");
  tessel::GenericThreadFactory factory;
  tessel::MessageLoopTimer timer(std::dynamic_pointer_cast<tessel::GenericThread>(
      factory.CreateThread("main", tessel_gen::ThreadTypeMain)));
  auto tracker = NewTracker();
  std::atomic<int> id{0};
  id = timer.CreateTimer(0.005, true, tracker->Callback([&](int call) {
    if (call < 3) return;
    timer.InvalidateTimer(id);
    ui.Quit();
  }));
  const int watchdog = timer.CreateTimer(20.0, false, [&ui] { ui.Quit(); });
  ui.Run();
  timer.InvalidateTimer(watchdog);
  const Seen seen = tracker->seen();
  EXPECT_EQ(seen.count(), 3);
  EXPECT_EQ(seen.called_on, std::this_thread::get_id());
  EXPECT_EQ(seen.releases, 1);
}

// A timer due after the wake that a closed loop destroyed unrun is refused.
TEST(MessageLoopTimer, RefusesOnceItsLoopHasGone) {
  tessel::GenericThreadFactory factory;
  auto ui = std::make_unique<base::MessageLoop>(base::MessageLoop::TYPE_UI, "ui");
  tessel::MessageLoopTimer timer(std::dynamic_pointer_cast<tessel::GenericThread>(
      factory.CreateThread("main", tessel_gen::ThreadTypeMain)));
  EXPECT_GT(timer.CreateTimer(3600.0, false, [] {}), 0);
  ui.reset();
  EXPECT_EQ(timer.CreateTimer(7200.0, false, [] {}), 0);
}

}  // namespace
