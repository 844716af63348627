// MessageLoopTimer: when callbacks run, on which thread, and when their
// callables are released.
#include <gtest/gtest.h>

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

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Every wait is bounded: a fault shows up as a failed expectation.
constexpr auto kWatchdog = std::chrono::seconds(20);

// Watches the callbacks made by Callback(): when each call started, and how
// many callables were released, the last of them where.
class Tracker : public std::enable_shared_from_this<Tracker> {
 public:
  // A callback that records its call, then runs `body` (given the call's
  // number, from 1).
  std::function<void()> Callback(std::function<void(int)> body = {}) {
    auto self = shared_from_this();
    std::shared_ptr<void> token(nullptr, [self](void*) { self->Released(); });
    return [self, token, body] {
      const int call = self->Called();
      if (body) body(call);
    };
  }

  // Waits until `done` holds; false when the watchdog expires first.
  bool WaitUntil(const std::function<bool(const Tracker&)>& done) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kWatchdog, [&] { return done(*this); });
  }
  bool WaitForCalls(int n) {
    return WaitUntil([n](const Tracker& t) { return t.calls_.size() >= std::size_t(n); });
  }
  bool WaitForRelease(int n = 1) {
    return WaitUntil([n](const Tracker& t) { return t.releases_ >= n; });
  }

  int calls() {
    std::lock_guard<std::mutex> lock(mutex_);
    return static_cast<int>(calls_.size());
  }
  Clock::time_point call_time(int index) {
    std::lock_guard<std::mutex> lock(mutex_);
    return calls_.at(index);
  }
  bool released() {
    std::lock_guard<std::mutex> lock(mutex_);
    return releases_ > 0;
  }
  std::thread::id released_on() {
    std::lock_guard<std::mutex> lock(mutex_);
    return released_on_;
  }
  std::thread::id called_on() {
    std::lock_guard<std::mutex> lock(mutex_);
    return called_on_;
  }

 private:
  int Called() {
    std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(Clock::now());
    called_on_ = std::this_thread::get_id();
    changed_.notify_all();
    return static_cast<int>(calls_.size());
  }
  void Released() {
    std::lock_guard<std::mutex> lock(mutex_);
    ++releases_;
    released_on_ = std::this_thread::get_id();
    changed_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Clock::time_point> calls_;
  std::thread::id called_on_;
  int releases_ = 0;
  std::thread::id released_on_;
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
  const double kInf = std::numeric_limits<double>::infinity();
  for (double interval : {-1.0, -1e-9, kInf, -kInf, std::nan("")}) {
    for (bool repeats : {false, true}) {
      auto tracker = NewTracker();
      EXPECT_EQ(timer.CreateTimer(interval, repeats, tracker->Callback()), 0) << interval;
      EXPECT_TRUE(tracker->released()) << interval;
    }
  }
  EXPECT_EQ(timer.CreateTimer(0.01, true, std::function<void()>()), 0);

  tessel::MessageLoopTimer without_thread(nullptr);
  auto tracker = NewTracker();
  EXPECT_EQ(without_thread.CreateTimer(0.01, false, tracker->Callback()), 0);
  EXPECT_TRUE(tracker->released());
  without_thread.InvalidateTimer(1);  // unknown identifiers are ignored
}

TEST(MessageLoopTimer, OneShotFiresOnceNoEarlierThanItsIntervalOnTheTimerThread) {
  tessel::MessageLoopTimer timer;
  auto tracker = NewTracker();
  const Clock::time_point start = Clock::now();
  const int id = timer.CreateTimer(0.03, false, tracker->Callback());
  ASSERT_GT(id, 0);
  ASSERT_TRUE(tracker->WaitForRelease());
  ASSERT_EQ(tracker->calls(), 1);
  EXPECT_GE(tracker->call_time(0) - start, milliseconds(30));
  EXPECT_NE(tracker->called_on(), std::this_thread::get_id());
  EXPECT_EQ(tracker->released_on(), tracker->called_on());
  timer.InvalidateTimer(id);  // finished: ignored
}

// Ticks are due at start + k * interval, whatever each callback costs: they
// stay in phase with the first tick instead of drifting. A tick is never
// early. A loaded machine may make single ticks late, or skip some.
TEST(MessageLoopTimer, RepeatsWithoutDrift) {
  tessel::MessageLoopTimer timer;
  auto tracker = NewTracker();
  const auto period = milliseconds(5);
  const Clock::time_point start = Clock::now();
  const int id = timer.CreateTimer(0.005, true, tracker->Callback([](int) {
    std::this_thread::sleep_for(std::chrono::microseconds(500));  // some work
  }));
  ASSERT_TRUE(tracker->WaitForCalls(200));
  timer.InvalidateTimer(id);
  int in_phase = 0;
  for (int i = 0; i < 200; ++i) {
    const Clock::duration since_start = tracker->call_time(i) - start;
    EXPECT_GE(since_start, period * (i + 1)) << "call " << i + 1;
    in_phase += since_start % period < period / 5;
  }
  // A drifting timer's calls wander evenly over the whole period.
  EXPECT_GT(in_phase, 100);
}

TEST(MessageLoopTimer, RepeatsNoMoreOftenThanEveryMillisecond) {
  tessel::MessageLoopTimer timer;
  auto tracker = NewTracker();
  const Clock::time_point start = Clock::now();
  const int id = timer.CreateTimer(0.0, true, tracker->Callback());
  ASSERT_TRUE(tracker->WaitForCalls(50));
  timer.InvalidateTimer(id);
  for (int i = 0; i < 50; ++i) EXPECT_GE(tracker->call_time(i) - start, milliseconds(i + 1));
}

// A callback that overruns two ticks is not followed by two calls back to
// back: the next call is the next tick still ahead.
TEST(MessageLoopTimer, SkipsTicksACallbackOverran) {
  tessel::MessageLoopTimer timer;
  auto tracker = NewTracker();
  const Clock::time_point start = Clock::now();
  const int id = timer.CreateTimer(0.01, true, tracker->Callback([](int call) {
    if (call == 1) std::this_thread::sleep_for(milliseconds(25));  // a slow callback
  }));
  ASSERT_TRUE(tracker->WaitForCalls(2));
  timer.InvalidateTimer(id);
  const Clock::duration first_end = tracker->call_time(0) - start + milliseconds(25);
  const auto ticks_overrun = first_end / milliseconds(10);
  EXPECT_GE(tracker->call_time(1) - start, milliseconds(10) * (ticks_overrun + 1));
}

TEST(MessageLoopTimer, InvalidatedFromAnotherThreadNeverStartsAgain) {
  tessel::MessageLoopTimer timer;
  std::vector<std::shared_ptr<Tracker>> trackers;
  // Invalidated before, during and between callbacks of a 1 ms timer.
  for (int round = 0; round < 30; ++round) {
    trackers.push_back(NewTracker());
    const int id = timer.CreateTimer(0.001, true, trackers.back()->Callback());
    ASSERT_GT(id, 0);
    if (round % 3 != 0) {
      ASSERT_TRUE(trackers.back()->WaitForCalls(round % 3));
    }
    timer.InvalidateTimer(id);
  }
  std::vector<int> calls;
  for (const auto& tracker : trackers) calls.push_back(tracker->calls());
  LetTicksPass(timer, milliseconds(20));
  for (std::size_t i = 0; i < trackers.size(); ++i) {
    EXPECT_EQ(trackers[i]->calls(), calls[i]) << "round " << i;
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
  EXPECT_EQ(tracker->calls(), 1);
  EXPECT_EQ(tracker->released_on(), tracker->called_on());
}

TEST(MessageLoopTimer, DestructorWaitsForARunningCallback) {
  auto timer = std::make_unique<tessel::MessageLoopTimer>();
  auto tracker = NewTracker();
  std::atomic<bool> destroying{false};
  std::atomic<bool> finished{false};
  timer->CreateTimer(0.001, true, tracker->Callback([&](int call) {
    if (call != 1) return;
    const Clock::time_point bound = Clock::now() + kWatchdog;
    while (!destroying && Clock::now() < bound) std::this_thread::yield();
    // Still working while the destructor runs on the test thread.
    std::this_thread::sleep_for(milliseconds(20));
    finished = true;
  }));
  ASSERT_TRUE(tracker->WaitForCalls(1));
  destroying = true;
  timer.reset();
  EXPECT_TRUE(finished);
  EXPECT_TRUE(tracker->released());  // before the destructor returned
  EXPECT_EQ(tracker->calls(), 1);
}

TEST(MessageLoopTimer, DestroyedInsideItsOwnCallbackDoesNotDeadlock) {
  auto tracker = NewTracker();
  auto timer = std::make_shared<tessel::MessageLoopTimer>();
  std::shared_ptr<tessel::MessageLoopTimer> owner = timer;
  timer->CreateTimer(0.001, true, tracker->Callback([&owner](int) { owner.reset(); }));
  timer.reset();
  ASSERT_TRUE(tracker->WaitForRelease());
  EXPECT_EQ(tracker->calls(), 1);
  EXPECT_EQ(tracker->released_on(), tracker->called_on());
}

// Many pending timers: identifiers stay positive and distinct; the half
// that is invalidated (due far later) never fires, the other half fires once
// each.
TEST(MessageLoopTimer, HundredThousandPendingTimers) {
  constexpr int kTimers = 100000;
  tessel::MessageLoopTimer timer;
  auto fired = std::make_shared<std::vector<std::atomic<int>>>(kTimers);
  auto tracker = NewTracker();  // counts every call
  std::unordered_set<int> ids;
  std::vector<int> by_index;
  for (int i = 0; i < kTimers; ++i) {
    auto count = tracker->Callback();
    const double interval = i % 2 == 0 ? (i % 50) * 1e-3 : 30.0;
    const int id = timer.CreateTimer(interval, false, [fired, i, count] {
      ++(*fired)[i];
      count();
    });
    ASSERT_GT(id, 0);
    ids.insert(id);
    by_index.push_back(id);
  }
  EXPECT_EQ(ids.size(), std::size_t(kTimers));
  for (int i = 1; i < kTimers; i += 2) timer.InvalidateTimer(by_index[i]);
  ASSERT_TRUE(tracker->WaitForCalls(kTimers / 2));
  EXPECT_TRUE(tracker->WaitForRelease(kTimers));  // fired or not
  int wrong = 0;
  for (int i = 0; i < kTimers; ++i) wrong += (*fired)[i] != (i % 2 == 0 ? 1 : 0);
  EXPECT_EQ(wrong, 0);
}

// On the user-interface loop, callbacks run inside the host's Run().
TEST(MessageLoopTimer, RunsOnTheUserInterfaceLoop) {
  base::MessageLoop ui(base::MessageLoop::TYPE_UI, "ui");
  tessel::GenericThreadFactory factory;
  auto main = std::dynamic_pointer_cast<tessel::GenericThread>(
      factory.CreateThread("main", tessel_gen::ThreadTypeMain));
  ASSERT_TRUE(main);
  tessel::MessageLoopTimer timer(main);
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
  EXPECT_EQ(tracker->calls(), 3);
  EXPECT_EQ(tracker->called_on(), std::this_thread::get_id());
  EXPECT_TRUE(tracker->released());
}

}  // namespace
