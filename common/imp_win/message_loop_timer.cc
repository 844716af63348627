#include "common/imp_win/message_loop_timer.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "gen/thread_type.h"
#include "platform/base/location.h"
#include "platform/base/task_runner.h"

namespace tessel {

namespace {

using Clock = std::chrono::steady_clock;
using Callback = std::function<void()>;

// Far enough to mean "never" for a host, near enough that start + k * interval
// stays well inside the clock's 64-bit nanosecond range.
constexpr double kLongestIntervalSeconds = 3e9;
constexpr std::chrono::nanoseconds kShortestRepeat = std::chrono::milliseconds(1);

// The period of a timer made with `seconds`, or false for a refused interval.
bool ToPeriod(double seconds, bool repeats, std::chrono::nanoseconds* period) {
  if (!(seconds >= 0) || std::isinf(seconds)) return false;  // also NaN
  seconds = std::min(seconds, kLongestIntervalSeconds);
  // Rounded up: a callback may run late, never early.
  *period = std::chrono::ceil<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
  if (repeats) *period = std::max(*period, kShortestRepeat);
  return true;
}

// A callback's exception must not end the callback thread, and the timer has
// nobody to hand it to.
void RunGuarded(const Callback& callback) {
  try {
    callback();
  } catch (...) {
  }
}

}  // namespace

// The timers of one MessageLoopTimer: a table by identifier, and a min-heap
// of their next ticks ordered by (due time, sequence number), so that ticks
// due together run in the order they were scheduled. The callback thread
// holds one delayed "wake" task for the earliest tick, posted again only when
// a new tick becomes the earliest; a wake runs the ticks that are due, one
// callback at a time with mutex_ unlocked. Heap entries of invalidated timers
// are dropped when they surface, or all at once when they outnumber the live
// timers.
class MessageLoopTimer::Core {
 public:
  explicit Core(std::shared_ptr<base::TaskRunner> runner) : runner_(std::move(runner)) {}

  // Returns the new timer's identifier, or 0 with `callback` released.
  int Create(const std::shared_ptr<Core>& self, std::chrono::nanoseconds period, bool repeats,
             Callback& callback) {
    const Clock::time_point start = Clock::now();
    int id;
    std::uint64_t serial;
    bool wake;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      // A closed loop may have destroyed the pending wake unrun, so a tick
      // due after it would never be woken for.
      if (closed_ || !runner_ || runner_->closed()) {
        callback = nullptr;
        return 0;
      }
      id = NextId();
      serial = ++last_serial_;
      timers_.emplace(id, Timer{std::move(callback), start, period, serial, 1, repeats});
      PushTick(id, serial, start + period);
      wake = ClaimWake(start + period);
    }
    if (!wake || PostWake(self, start + period)) return id;
    Discard(id, serial);
    return 0;
  }

  void Invalidate(int id) {
    Callback doomed;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      auto found = timers_.find(id);
      if (found == timers_.end()) return;
      if (found->second.running) {
        found->second.invalidated = true;
        return;
      }
      doomed = std::move(found->second.callback);
      timers_.erase(found);
      DropStaleTicksIfMany();
    }
  }

  // Invalidates every timer for good and waits for a callback running on
  // another thread.
  void Close() {
    std::vector<Callback> doomed;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      closed_ = true;
      for (auto it = timers_.begin(); it != timers_.end();) {
        if (it->second.running) {
          it->second.invalidated = true;
          ++it;
        } else {
          doomed.push_back(std::move(it->second.callback));
          it = timers_.erase(it);
        }
      }
      ticks_.clear();
    }
    doomed.clear();
    std::unique_lock<std::mutex> lock(mutex_);
    idle_.wait(lock, [this] {
      return running_ == 0 || running_thread_ == std::this_thread::get_id();
    });
  }

  // The wake task posted for `due`, on the callback thread: runs the ticks
  // due by now, then makes sure a wake is posted for the next one.
  void Wake(const std::shared_ptr<Core>& self, Clock::time_point due) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (due == armed_) armed_ = Clock::time_point::max();
    const Clock::time_point now = Clock::now();
    // Bounded, so that other tasks of a shared loop get their turn.
    for (int ran = 0; ran < kTicksPerWake && !ticks_.empty() && ticks_.front().due <= now;) {
      const Tick tick = PopTick();
      Timer* timer = Find(tick.id, tick.serial);
      if (timer == nullptr || timer->running) continue;
      RunTick(lock, tick.id, *timer);
      ++ran;
    }
    if (ticks_.empty()) return;
    const Clock::time_point next = std::max(ticks_.front().due, now);
    if (!ClaimWake(next)) return;
    lock.unlock();
    PostWake(self, next);
  }

 private:
  static constexpr int kTicksPerWake = 256;

  struct Timer {
    Callback callback;  // empty while the callback runs
    Clock::time_point start;
    std::chrono::nanoseconds period;
    std::uint64_t serial;  // tells this timer from earlier ones with its id
    std::int64_t tick;     // the tick scheduled next, at start + tick * period
    bool repeats;
    bool running = false;
    bool invalidated = false;  // while running: do not start again
  };
  struct Tick {
    Clock::time_point due;
    std::uint64_t sequence;
    std::uint64_t serial;
    int id;
  };
  // The heap's order: the latest tick sinks, so the earliest is at the front.
  static bool Later(const Tick& a, const Tick& b) {
    return a.due != b.due ? a.due > b.due : a.sequence > b.sequence;
  }

  Timer* Find(int id, std::uint64_t serial) {
    auto found = timers_.find(id);
    return found == timers_.end() || found->second.serial != serial ? nullptr : &found->second;
  }

  // The next free identifier after the last one handed out, wrapping to 1.
  int NextId() {
    do {
      last_id_ = last_id_ == INT_MAX ? 1 : last_id_ + 1;
    } while (timers_.count(last_id_) != 0);
    return last_id_;
  }

  // Needs mutex_.
  void PushTick(int id, std::uint64_t serial, Clock::time_point due) {
    ticks_.push_back(Tick{due, ++last_sequence_, serial, id});
    std::push_heap(ticks_.begin(), ticks_.end(), &Later);
  }

  // True when no wake is posted for `due` or earlier: the caller then posts
  // one. Needs mutex_.
  bool ClaimWake(Clock::time_point due) {
    if (due >= armed_) return false;
    armed_ = due;
    return true;
  }

  Tick PopTick() {
    std::pop_heap(ticks_.begin(), ticks_.end(), &Later);
    const Tick tick = ticks_.back();
    ticks_.pop_back();
    return tick;
  }

  // Keeps the heap in proportion to the live timers when many long timers
  // are invalidated long before they are due. Needs mutex_.
  void DropStaleTicksIfMany() {
    if (ticks_.size() < 64 || ticks_.size() < 2 * timers_.size()) return;
    ticks_.erase(std::remove_if(ticks_.begin(), ticks_.end(),
                                [this](const Tick& tick) {
                                  return Find(tick.id, tick.serial) == nullptr;
                                }),
                 ticks_.end());
    std::make_heap(ticks_.begin(), ticks_.end(), &Later);
  }

  // Runs one tick of `timer` with `lock` released; on return the lock is held
  // again and `timer` may be gone.
  void RunTick(std::unique_lock<std::mutex>& lock, int id, Timer& timer) {
    const std::uint64_t serial = timer.serial;
    timer.running = true;
    Callback callback = std::move(timer.callback);
    ++running_;
    running_thread_ = std::this_thread::get_id();
    lock.unlock();
    RunGuarded(callback);
    lock.lock();
    Timer* after = Find(id, serial);
    if (after->repeats && !after->invalidated) {
      after->callback = std::move(callback);
      after->running = false;
      PushTick(id, serial, NextDue(*after, Clock::now()));
      FinishRun();
      return;
    }
    timers_.erase(id);
    lock.unlock();
    // Released here, before a destructor waiting for this run goes on.
    callback = nullptr;
    lock.lock();
    FinishRun();
  }

  // The first tick after the one just run that is still ahead of `now`;
  // ticks a slow callback overran are skipped.
  static Clock::time_point NextDue(Timer& timer, Clock::time_point now) {
    const std::int64_t reached = (now - timer.start) / timer.period;
    timer.tick = std::max(timer.tick + 1, reached + 1);
    return timer.start + timer.period * timer.tick;
  }

  bool PostWake(const std::shared_ptr<Core>& self, Clock::time_point due) {
    const auto delay = std::max(std::chrono::nanoseconds(due - Clock::now()),
                                std::chrono::nanoseconds(0));
    return runner_->PostDelayedTask(
        FROM_HERE, [self, due] { self->Wake(self, due); }, delay);
  }

  // Drops a timer whose wake could not be posted (the callback thread has
  // stopped), releasing its callback on the calling thread.
  void Discard(int id, std::uint64_t serial) {
    Callback doomed;
    std::lock_guard<std::mutex> lock(mutex_);
    Timer* timer = Find(id, serial);
    if (timer == nullptr || timer->running) return;
    doomed = std::move(timer->callback);
    timers_.erase(id);
  }

  // Needs mutex_.
  void FinishRun() {
    --running_;
    idle_.notify_all();
  }

  const std::shared_ptr<base::TaskRunner> runner_;  // null: refuse every timer
  std::mutex mutex_;  // guards everything below
  std::condition_variable idle_;  // signalled when a run finishes
  std::unordered_map<int, Timer> timers_;
  std::vector<Tick> ticks_;  // min-heap by Later; may hold ticks of gone timers
  // Due time of the earliest wake task posted and not yet run; max: none.
  Clock::time_point armed_ = Clock::time_point::max();
  int last_id_ = 0;
  std::uint64_t last_serial_ = 0;
  std::uint64_t last_sequence_ = 0;
  int running_ = 0;  // callbacks in progress (more than one only when nested)
  std::thread::id running_thread_;
  bool closed_ = false;
};

MessageLoopTimer::MessageLoopTimer()
    : MessageLoopTimer(std::make_shared<GenericThread>("timer", tessel_gen::ThreadTypeWorker)) {}

MessageLoopTimer::MessageLoopTimer(std::shared_ptr<GenericThread> thread)
    : thread_(std::move(thread)),
      core_(std::make_shared<Core>(thread_ ? thread_->task_runner() : nullptr)) {}

MessageLoopTimer::~MessageLoopTimer() { core_->Close(); }

int MessageLoopTimer::CreateTimer(double interval, bool repeats, std::function<void()> callback) {
  std::chrono::nanoseconds period;
  if (!callback || !ToPeriod(interval, repeats, &period)) {
    callback = nullptr;
    return 0;
  }
  return core_->Create(core_, period, repeats, callback);
}

void MessageLoopTimer::InvalidateTimer(int timer_id) { core_->Invalidate(timer_id); }

}  // namespace tessel
