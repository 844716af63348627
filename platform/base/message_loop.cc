#include "platform/base/message_loop.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace base {

namespace {

thread_local MessageLoop* g_current_loop = nullptr;

// The user-interface loop and its handle, registered together.
std::mutex g_ui_mutex;
std::atomic<MessageLoop*> g_ui_loop{nullptr};  // written under g_ui_mutex
std::shared_ptr<TaskRunner>& UiRunner() {      // guarded by g_ui_mutex
  // Never destroyed: threads may look it up until the process ends.
  static auto* const runner = new std::shared_ptr<TaskRunner>();
  return *runner;
}

}  // namespace

MessageLoop::MessageLoop(Type type, std::string thread_name)
    : type_(type),
      runner_(new TaskRunner(std::move(thread_name), std::this_thread::get_id())) {
  if (g_current_loop == nullptr) {
    g_current_loop = this;
    bound_to_thread_ = true;
  }
  if (type_ == TYPE_UI) {
    std::lock_guard<std::mutex> lock(g_ui_mutex);
    if (g_ui_loop.load(std::memory_order_relaxed) == nullptr) {
      g_ui_loop.store(this, std::memory_order_release);
      UiRunner() = runner_;
    }
  }
}

MessageLoop::~MessageLoop() {
  runner_->ForgetQuit();
  std::vector<TaskRunner::DelayedTask> future_tasks;
  do {
    RunTasks(TaskRunner::Wait::kDontSleep, false);
  } while (!runner_->CloseIfIdle(future_tasks));
  future_tasks.clear();  // destroyed here, on the loop's thread, not run
  {
    std::lock_guard<std::mutex> lock(g_ui_mutex);
    if (g_ui_loop.load(std::memory_order_relaxed) == this) {
      g_ui_loop.store(nullptr, std::memory_order_release);
      UiRunner().reset();
    }
  }
  if (bound_to_thread_) g_current_loop = nullptr;
}

MessageLoop* MessageLoop::current() { return g_current_loop; }

void MessageLoop::PostTask(const tracked_objects::Location& from_here, Closure task) {
  runner_->PostTask(from_here, std::move(task));
}

void MessageLoop::PostDelayedTask(const tracked_objects::Location& from_here, Closure task,
                                  std::chrono::nanoseconds delay) {
  runner_->PostDelayedTask(from_here, std::move(task), delay);
}

void MessageLoop::Run() { RunTasks(TaskRunner::Wait::kSleep, true); }

// A pending Quit() is left for the Run() it was meant for.
void MessageLoop::RunUntilIdle() { RunTasks(TaskRunner::Wait::kDontSleep, false); }

void MessageLoop::Quit() { runner_->AskQuit(); }

void MessageLoop::QuitWhenIdle() { runner_->AskQuitWhenIdle(); }

void MessageLoop::SetWakeUpHook(std::function<void()> hook) {
  runner_->SetWakeUpHook(std::move(hook));
}

std::optional<std::chrono::nanoseconds> MessageLoop::TimeUntilNextDelayedTask() const {
  return runner_->TimeUntilNextDelayedTask();
}

void MessageLoop::RunTasks(TaskRunner::Wait wait, bool honour_quit) {
  for (;;) {
    if (honour_quit && runner_->ConsumeQuit()) return;
    if (!batch_.empty()) {
      // Taken out first: the task may run a nested loop that takes from
      // batch_ too. The closure, and what it captured, dies here on the
      // loop's thread.
      Closure task = batch_.Pop();
      task();
      continue;
    }
    if (!runner_->Take(batch_, wait, honour_quit)) return;
  }
}

MessageLoop* GetUIMessageLoop() { return g_ui_loop.load(std::memory_order_acquire); }

std::shared_ptr<TaskRunner> GetUIMessageLoopTaskRunner() {
  std::lock_guard<std::mutex> lock(g_ui_mutex);
  return UiRunner();
}

}  // namespace base
