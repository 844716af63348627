#include "platform/base/task_runner.h"

#include <algorithm>
#include <iterator>

namespace base {

namespace {

constexpr std::chrono::nanoseconds kLongestDelay = std::chrono::hours(24 * 365 * 100);
// Above this many slots, an idle loop gives back the delayed heap's storage
// that is three quarters unused.
constexpr std::size_t kKeptDelayedSlots = 1024;
// Spare queue chunks an idle loop keeps; the rest go once it has been idle
// for kTrimAfter, so back-to-back bursts reuse their memory.
constexpr std::size_t kKeptSpareChunks = 4;
constexpr std::chrono::seconds kTrimAfter{1};

}  // namespace

TaskRunner::TaskRunner(std::string thread_name, std::thread::id owner)
    : thread_name_(std::move(thread_name)), owner_(owner) {}

TaskRunner::~TaskRunner() = default;

bool TaskRunner::PostTask(const tracked_objects::Location&, Closure task) {
  if (!task) return false;
  bool wake_loop = false;
  Hook hook;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) return false;
    if (queue_.empty()) hook = hook_;
    queue_.Push(std::move(task));
    wake_loop = std::exchange(sleeping_, false);
  }
  if (wake_loop || hook) WakeUp(wake_loop, std::move(hook));
  return true;
}

bool TaskRunner::PostDelayedTask(const tracked_objects::Location& from_here, Closure task,
                                 std::chrono::nanoseconds delay) {
  if (delay <= std::chrono::nanoseconds::zero()) return PostTask(from_here, std::move(task));
  if (!task) return false;
  const Clock::time_point due = Clock::now() + std::min(delay, kLongestDelay);
  bool wake_loop = false;
  Hook hook;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) return false;
    delayed_.push_back(DelayedTask{due, next_sequence_++, std::move(task)});
    std::push_heap(delayed_.begin(), delayed_.end(), &RunsLater);
    // Only a new earliest deadline changes when the loop must wake.
    if (delayed_.front().sequence == next_sequence_ - 1) {
      hook = hook_;
      wake_loop = std::exchange(sleeping_, false);
    }
  }
  if (wake_loop || hook) WakeUp(wake_loop, std::move(hook));
  return true;
}

bool TaskRunner::RunsLater(const DelayedTask& a, const DelayedTask& b) {
  return a.due != b.due ? a.due > b.due : a.sequence > b.sequence;
}

bool TaskRunner::RunsTasksOnCurrentThread() const {
  return owner_ == std::this_thread::get_id();
}

bool TaskRunner::closed() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return closed_;
}

void TaskRunner::WakeUp(bool wake_loop, Hook hook) {
  // The loop may run the new task, end and drop its reference before this
  // thread gets to notify.
  const std::shared_ptr<TaskRunner> keep = shared_from_this();
  if (wake_loop) wake_.notify_one();
  if (hook) (*hook)();
}

bool TaskRunner::Take(TaskQueue& out, Wait wait, bool honour_quit) {
  std::vector<DelayedTask> spare;  // freed after unlocking
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    if (!delayed_.empty()) MoveDueTasksLocked(Clock::now());
    if (!queue_.empty()) {
      out.SwapTasks(queue_);
      out.ShareSpares(queue_);
      trim_at_.reset();
      return true;
    }
    GiveBackIdleStorageLocked(spare);
    const Clock::time_point now = Clock::now();
    if (out.spare_count() + queue_.spare_count() <= kKeptSpareChunks) {
      trim_at_.reset();
    } else if (wait == Wait::kDontSleep || (trim_at_ && *trim_at_ <= now)) {
      out.ReleaseSpares(0);
      queue_.ReleaseSpares(kKeptSpareChunks);
      trim_at_.reset();
    } else if (!trim_at_) {
      trim_at_ = now + kTrimAfter;
    }
    if (wait == Wait::kDontSleep) return false;
    if (honour_quit) {
      if (quit_.exchange(false, std::memory_order_relaxed)) return false;
      if (std::exchange(quit_when_idle_, false)) return false;
      if (stopping_) return false;
    }
    sleeping_ = true;
    std::optional<Clock::time_point> until = trim_at_;
    if (!delayed_.empty() && (!until || delayed_.front().due < *until)) {
      until = delayed_.front().due;
    }
    if (until) {
      wake_.wait_until(lock, *until);
    } else {
      wake_.wait(lock);
    }
    sleeping_ = false;
  }
}

void TaskRunner::MoveDueTasksLocked(Clock::time_point now) {
  while (!delayed_.empty() && delayed_.front().due <= now) {
    std::pop_heap(delayed_.begin(), delayed_.end(), &RunsLater);
    queue_.Push(std::move(delayed_.back().task));
    delayed_.pop_back();
  }
}

void TaskRunner::GiveBackIdleStorageLocked(std::vector<DelayedTask>& spare) {
  if (delayed_.capacity() <= kKeptDelayedSlots || delayed_.size() * 4 > delayed_.capacity()) {
    return;
  }
  // Moving the elements in order keeps the heap a heap; each element moves
  // at most once per halving, so the copying is paid for by the burst.
  std::vector<DelayedTask> smaller;
  smaller.reserve(delayed_.size() * 2);
  std::move(delayed_.begin(), delayed_.end(), std::back_inserter(smaller));
  spare.swap(delayed_);
  delayed_.swap(smaller);
}

bool TaskRunner::CloseIfIdle(std::vector<DelayedTask>& future_tasks) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (!delayed_.empty()) MoveDueTasksLocked(Clock::now());
  if (!queue_.empty()) return false;
  closed_ = true;
  future_tasks.swap(delayed_);
  hook_.reset();
  return true;
}

template <typename Change>
void TaskRunner::ChangeStateAndWake(Change change) {
  bool wake_loop = false;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    change();
    wake_loop = std::exchange(sleeping_, false);
  }
  if (wake_loop) WakeUp(true, nullptr);
}

void TaskRunner::AskQuit() {
  ChangeStateAndWake([this] { quit_.store(true, std::memory_order_relaxed); });
}

void TaskRunner::AskQuitWhenIdle() {
  ChangeStateAndWake([this] { quit_when_idle_ = true; });
}

void TaskRunner::StopWhenIdle() {
  ChangeStateAndWake([this] { stopping_ = true; });
}

bool TaskRunner::stopping() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return stopping_;
}

void TaskRunner::ForgetQuit() {
  std::lock_guard<std::mutex> lock(mutex_);
  quit_.store(false, std::memory_order_relaxed);
  quit_when_idle_ = false;
}

bool TaskRunner::ConsumeQuit() {
  return quit_.load(std::memory_order_relaxed) &&
         quit_.exchange(false, std::memory_order_relaxed);
}

void TaskRunner::SetWakeUpHook(std::function<void()> hook) {
  Hook replacement;
  if (hook) replacement = std::make_shared<const std::function<void()>>(std::move(hook));
  std::lock_guard<std::mutex> lock(mutex_);
  if (!closed_) hook_.swap(replacement);
}

std::optional<std::chrono::nanoseconds> TaskRunner::TimeUntilNextDelayedTask() const {
  std::lock_guard<std::mutex> lock(mutex_);
  if (delayed_.empty()) return std::nullopt;
  return std::max(std::chrono::nanoseconds::zero(),
                  std::chrono::nanoseconds(delayed_.front().due - Clock::now()));
}

}  // namespace base
