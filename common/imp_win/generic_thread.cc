#include "common/imp_win/generic_thread.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

#include "common/logger.h"
#include "common/semaphore.h"
#include "platform/base/callback.h"
#include "platform/base/location.h"
#include "platform/base/message_loop.h"
#include "platform/base/task_runner.h"
#include "platform/base/thread.h"

namespace tessel {

namespace {

using Task = std::function<void()>;

// Joins released worker threads on a thread of its own, so that releasing a
// worker never blocks on work that may need the releasing thread. Started on
// first use and never destroyed: workers may still be ending at exit.
class Reaper {
 public:
  static Reaper& Get() {
    static Reaper* const reaper = new Reaper;
    return *reaper;
  }

  // Takes over a thread that has been asked to stop, and joins it.
  void Adopt(std::unique_ptr<base::Thread> thread) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!started_) {
      std::thread(&Reaper::Main, this).detach();
      started_ = true;
    }
    stopping_.push_back(std::move(thread));
    adopted_.notify_one();
  }

 private:
  Reaper() = default;

  void Main() {
    for (;;) {
      std::unique_ptr<base::Thread> thread;
      {
        std::unique_lock<std::mutex> lock(mutex_);
        adopted_.wait(lock, [this] { return !stopping_.empty(); });
        thread = std::move(stopping_.front());
        stopping_.pop_front();
      }
      thread.reset();  // joins
    }
  }

  std::mutex mutex_;                  // guards stopping_ and started_
  std::condition_variable adopted_;   // signalled when stopping_ grows
  std::deque<std::unique_ptr<base::Thread>> stopping_;
  bool started_ = false;
};

// An exception must never end a loop's thread; an asynchronous caller has
// nobody to hand it to, so the host's log hears of it.
void RunAsyncTask(const Task& task) {
  try {
    task();
  } catch (const std::exception& error) {
    Logger::sharedLogger()->error(
        std::string("tessel::GenericThread::DispatchAsync: a task threw: ") + error.what());
  } catch (...) {
    Logger::sharedLogger()->error(
        "tessel::GenericThread::DispatchAsync: a task threw a non-standard exception");
  }
}

// One DispatchSync call, on the caller's stack until `done` is signalled.
struct SyncCall {
  Task task;
  std::exception_ptr error;
  Semaphore done;
};

// Runs the task, destroys it (and its captures) here, then releases the
// caller, who rethrows any exception left in `error`.
void RunSyncTask(SyncCall* call) {
  try {
    call->task();
  } catch (...) {
    call->error = std::current_exception();
  }
  try {
    call->task = nullptr;
  } catch (...) {
  }
  call->done.notify();
}

std::shared_ptr<base::TaskRunner> StartWorker(std::unique_ptr<base::Thread>& thread,
                                              const std::string& name) {
  thread = std::make_unique<base::Thread>(name.c_str());
  thread->StartWithOptions(base::Thread::Options());
  return thread->task_runner();
}

}  // namespace

GenericThread::GenericThread(const std::string& name, tessel_gen::ThreadType type)
    : type_(type) {
  runner_ = type == tessel_gen::ThreadTypeMain ? base::GetUIMessageLoopTaskRunner()
                                               : StartWorker(thread_, name);
}

GenericThread::~GenericThread() {
  values_.clear();
  if (thread_) {
    thread_->StopSoon();
    Reaper::Get().Adopt(std::move(thread_));
  }
}

void GenericThread::DispatchSync(std::function<void()> task) {
  if (!runner_ || !task) return;
  if (IsCurrentThread()) {
    task();
    return;
  }
  SyncCall call{std::move(task), nullptr, {}};
  const bool posted = runner_->PostTask(
      tracked_objects::Location("tessel::GenericThread::DispatchSync", __FILE__, __LINE__,
                                tracked_objects::GetProgramCounter()),
      base::Bind(&RunSyncTask, &call));
  if (!posted) return;
  call.done.wait();
  if (call.error) std::rethrow_exception(call.error);
}

int GenericThread::DispatchAsync(std::function<void()> task) {
  if (!runner_ || !task) return 0;
  runner_->PostTask(
      tracked_objects::Location("tessel::GenericThread::DispatchAsync", __FILE__, __LINE__,
                                tracked_objects::GetProgramCounter()),
      [task = std::move(task)] { RunAsyncTask(task); });
  return 0;
}

void GenericThread::CancelTask(int) {}

tessel_gen::ThreadType GenericThread::type() { return type_; }

std::string GenericThread::name() { return thread_ ? thread_->thread_name() : std::string(); }

bool GenericThread::IsCurrentThread() {
  // Loops are compared through their handles, which outlive them.
  const base::MessageLoop* loop = base::MessageLoop::current();
  if (loop == nullptr) return runner_ == nullptr;
  return runner_ != nullptr && loop->task_runner() == runner_;
}

void GenericThread::set_value(const std::string& value, const std::string& key) {
  if (IsCurrentThread()) values_[key] = value;
}

std::string GenericThread::value_for_key(const std::string& key) {
  auto found = values_.find(key);
  return found == values_.end() ? std::string() : found->second;
}

const std::string& GenericThread::thread_key() const {
  static const std::string* const kNoLoop = new std::string();
  return runner_ ? runner_->thread_name() : *kNoLoop;
}

}  // namespace tessel
