#include "platform/base/message_loop.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace base {

namespace {

thread_local MessageLoop* g_current_loop = nullptr;
std::atomic<MessageLoop*> g_ui_loop{nullptr};

}  // namespace

// The producers' side of a loop: many threads append under `mutex`; the
// loop's thread takes everything at once by swapping vectors, so a post costs
// one short critical section and no allocation once the vectors have grown.
class MessageLoop::IncomingQueue {
 public:
  // Applies `change` under the lock, then wakes the loop's thread if it
  // sleeps. The wake-up goes through a reference held past the unlock,
  // because the loop may run the new task, quit and be destroyed before this
  // thread gets to notify.
  template <typename Change>
  static void Update(const std::shared_ptr<IncomingQueue>& queue, Change change) {
    std::shared_ptr<IncomingQueue> to_wake;
    {
      std::lock_guard<std::mutex> lock(queue->mutex_);
      change(*queue);
      if (queue->sleeping_) {
        queue->sleeping_ = false;
        to_wake = queue;
      }
    }
    if (to_wake) to_wake->wake_.notify_one();
  }

  // Moves every queued task into `out` (which must be empty). With
  // Wait::kSleep, sleeps first while there is none and no quit is asked.
  // Returns false, consuming the request, when Run() must return instead.
  bool Take(std::vector<PendingTask>& out, Wait wait) {
    std::unique_lock<std::mutex> lock(mutex_);
    while (tasks_.empty()) {
      if (wait == Wait::kDontSleep) return false;
      if (quit_.exchange(false, std::memory_order_relaxed)) return false;
      if (quit_when_idle_) {
        quit_when_idle_ = false;
        return false;
      }
      sleeping_ = true;
      wake_.wait(lock);
    }
    sleeping_ = false;
    out.swap(tasks_);
    return true;
  }

  void Push(PendingTask task) { tasks_.push_back(std::move(task)); }
  void AskQuit() { quit_.store(true, std::memory_order_relaxed); }
  void AskQuitWhenIdle() { quit_when_idle_ = true; }
  void ForgetQuit() {
    std::lock_guard<std::mutex> lock(mutex_);
    quit_.store(false, std::memory_order_relaxed);
    quit_when_idle_ = false;
  }

  // Checked by the loop's thread after every task, so kept apart from the
  // line the producers write.
  bool ConsumeQuit() {
    return quit_.load(std::memory_order_relaxed) &&
           quit_.exchange(false, std::memory_order_relaxed);
  }

 private:
  std::mutex mutex_;                // guards tasks_, sleeping_, quit_when_idle_
  std::condition_variable wake_;    // signalled when sleeping_ is cleared
  std::vector<PendingTask> tasks_;  // posted, not yet taken by the loop
  bool sleeping_ = false;           // the loop's thread waits on wake_
  bool quit_when_idle_ = false;
  alignas(64) std::atomic<bool> quit_{false};  // written under mutex_ too
};

MessageLoop::MessageLoop(Type type, std::string thread_name)
    : type_(type),
      thread_name_(std::move(thread_name)),
      incoming_(std::make_shared<IncomingQueue>()) {
  if (g_current_loop == nullptr) {
    g_current_loop = this;
    bound_to_thread_ = true;
  }
  if (type_ == TYPE_UI) {
    MessageLoop* none = nullptr;
    g_ui_loop.compare_exchange_strong(none, this);
  }
}

MessageLoop::~MessageLoop() {
  incoming_->ForgetQuit();
  RunTasks(Wait::kDontSleep, Quitting::kIgnore);
  MessageLoop* self = this;
  g_ui_loop.compare_exchange_strong(self, nullptr);
  if (bound_to_thread_) g_current_loop = nullptr;
}

MessageLoop* MessageLoop::current() { return g_current_loop; }

void MessageLoop::PostTask(const tracked_objects::Location& from_here, Closure task) {
  if (!task) return;
  IncomingQueue::Update(incoming_, [&](IncomingQueue& queue) {
    queue.Push(PendingTask{std::move(task), from_here});
  });
}

void MessageLoop::Run() { RunTasks(Wait::kSleep, Quitting::kHonour); }

void MessageLoop::RunUntilIdle() { RunTasks(Wait::kDontSleep, Quitting::kHonour); }

void MessageLoop::Quit() {
  IncomingQueue::Update(incoming_, [](IncomingQueue& queue) { queue.AskQuit(); });
}

void MessageLoop::QuitWhenIdle() {
  IncomingQueue::Update(incoming_, [](IncomingQueue& queue) { queue.AskQuitWhenIdle(); });
}

void MessageLoop::RunTasks(Wait wait, Quitting quitting) {
  for (;;) {
    if (quitting == Quitting::kHonour && incoming_->ConsumeQuit()) return;
    if (next_ < batch_.size()) {
      RunNextTask();
      continue;
    }
    batch_.clear();
    next_ = 0;
    if (!incoming_->Take(batch_, wait)) return;
  }
}

void MessageLoop::RunNextTask() {
  // Moved out first: the task may run a nested loop that refills batch_. The
  // closure, and what it captured, is released here on the loop's thread.
  PendingTask pending = std::move(batch_[next_++]);
  pending.task();
}

MessageLoop* GetUIMessageLoop() { return g_ui_loop.load(std::memory_order_acquire); }

}  // namespace base
