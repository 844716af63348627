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

// The timers of one MessageLoopTimer. Each scheduled tick is one delayed task
// on the callback thread that names its timer by identifier and serial
// number; a task whose timer is gone, or whose identifier has been reused
// since, does nothing. Callbacks are run and released with mutex_ unlocked.
class MessageLoopTimer::Core {
 public:
  explicit Core(std::shared_ptr<base::TaskRunner> runner) : runner_(std::move(runner)) {}

  // Returns the new timer's identifier, or 0 with `callback` released.
  int Create(const std::shared_ptr<Core>& self, std::chrono::nanoseconds period, bool repeats,
             Callback& callback) {
    const Clock::time_point start = Clock::now();
    int id;
    std::uint64_t serial;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      if (closed_ || !runner_) {
        callback = nullptr;
        return 0;
      }
      id = NextId();
      serial = ++last_serial_;
      timers_.emplace(id, Timer{std::move(callback), start, period, serial, 1, repeats});
    }
    if (Post(self, id, serial, start + period)) return id;
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
    }
    doomed.clear();
    std::unique_lock<std::mutex> lock(mutex_);
    idle_.wait(lock, [this] {
      return running_ == 0 || running_thread_ == std::this_thread::get_id();
    });
  }

  // One tick of timer `id`, on the callback thread.
  void Fire(const std::shared_ptr<Core>& self, int id, std::uint64_t serial) {
    Callback callback;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      Timer* timer = Find(id, serial);
      if (timer == nullptr || timer->running) return;
      timer->running = true;
      callback = std::move(timer->callback);
      ++running_;
      running_thread_ = std::this_thread::get_id();
    }
    RunGuarded(callback);
    Clock::time_point next_due;
    bool keep;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      Timer* timer = Find(id, serial);
      keep = timer->repeats && !timer->invalidated;
      if (keep) {
        timer->callback = std::move(callback);
        timer->running = false;
        next_due = NextDue(*timer, Clock::now());
        FinishRun();
      } else {
        timers_.erase(id);
      }
    }
    if (!keep) {
      // Released here, before a destructor waiting for this run goes on.
      callback = nullptr;
      std::lock_guard<std::mutex> lock(mutex_);
      FinishRun();
    } else if (!Post(self, id, serial, next_due)) {
      Discard(id, serial);
    }
  }

 private:
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

  Timer* Find(int id, std::uint64_t serial) {
    auto found = timers_.find(id);
    return found == timers_.end() || found->second.serial != serial ? nullptr : &found->second;
  }

  // Lowest free identifier after the last one handed out, wrapping to 1.
  int NextId() {
    do {
      last_id_ = last_id_ == INT_MAX ? 1 : last_id_ + 1;
    } while (timers_.count(last_id_) != 0);
    return last_id_;
  }

  // The first tick after the one just run that is still ahead of `now`;
  // ticks a slow callback overran are skipped.
  static Clock::time_point NextDue(Timer& timer, Clock::time_point now) {
    const std::int64_t reached = (now - timer.start) / timer.period;
    timer.tick = std::max(timer.tick + 1, reached + 1);
    return timer.start + timer.period * timer.tick;
  }

  bool Post(const std::shared_ptr<Core>& self, int id, std::uint64_t serial,
            Clock::time_point due) {
    const auto delay = std::max(std::chrono::nanoseconds(due - Clock::now()),
                                std::chrono::nanoseconds(0));
    return runner_->PostDelayedTask(
        FROM_HERE, [self, id, serial] { self->Fire(self, id, serial); }, delay);
  }

  // Drops a timer whose tick could not be posted (the callback thread has
  // stopped), releasing its callback on the calling thread.
  void Discard(int id, std::uint64_t serial) {
    Callback doomed;
    std::lock_guard<std::mutex> lock(mutex_);
    Timer* timer = Find(id, serial);
    if (timer == nullptr || timer->running) return;
    doomed = std::move(timer->callback);
    timers_.erase(id);
  }

  // Under mutex_.
  void FinishRun() {
    --running_;
    idle_.notify_all();
  }

  const std::shared_ptr<base::TaskRunner> runner_;  // null: refuse every timer
  std::mutex mutex_;  // guards everything below
  std::condition_variable idle_;  // signalled when a run finishes
  std::unordered_map<int, Timer> timers_;
  int last_id_ = 0;
  std::uint64_t last_serial_ = 0;
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
