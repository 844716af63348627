#include "platform/base/thread.h"

#include <condition_variable>
#include <mutex>

#include "platform/base/thread_name.h"

namespace base {

// Handed to the new thread; lives on the starting thread's stack until the
// loop is announced.
struct Thread::Startup {
  MessageLoop::Type type;
  const std::string* name;
  std::mutex mutex;                 // guards loop
  std::condition_variable started;  // signalled once loop is set
  MessageLoop* loop = nullptr;
};

Thread::Thread(const char* name) : name_(name ? name : "") {}

Thread::~Thread() { Stop(); }

bool Thread::StartWithOptions(const Options& options) {
  if (started_) return false;
  Startup startup;
  startup.type = options.message_loop_type;
  startup.name = &name_;

  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  if (options.stack_size > 0) pthread_attr_setstacksize(&attributes, options.stack_size);
  const int created = pthread_create(&thread_, &attributes, &Thread::ThreadMain, &startup);
  pthread_attr_destroy(&attributes);
  if (created != 0) return false;

  std::unique_lock<std::mutex> lock(startup.mutex);
  startup.started.wait(lock, [&] { return startup.loop != nullptr; });
  message_loop_ = startup.loop;
  runner_ = message_loop_->task_runner();
  started_ = true;
  return true;
}

void Thread::StopSoon() {
  if (!started_ || message_loop_ == nullptr) return;
  message_loop_ = nullptr;
  runner_->StopWhenIdle();
}

void Thread::Stop() {
  if (!started_) return;
  StopSoon();
  started_ = false;
  runner_.reset();
  if (pthread_equal(thread_, pthread_self())) {
    pthread_detach(thread_);
  } else {
    pthread_join(thread_, nullptr);
  }
}

void* Thread::ThreadMain(void* argument) {
  auto* startup = static_cast<Startup*>(argument);
  SetCurrentThreadName(*startup->name);
  MessageLoop loop(startup->type, *startup->name);
  {
    std::lock_guard<std::mutex> lock(startup->mutex);
    startup->loop = &loop;
    startup->started.notify_one();
  }
  // `startup` is gone from here on. A stray Quit() only ends one Run().
  const TaskRunner& runner = *loop.runner_;
  do {
    loop.Run();
  } while (!runner.stopping());
  return nullptr;
}

}  // namespace base
