#include "platform/base/thread.h"

#include <condition_variable>
#include <mutex>

namespace base {

// Handed to the new thread; lives on the starting thread's stack until the
// loop is announced.
struct Thread::Startup {
  MessageLoop::Type type;
  const std::string* name;
  std::shared_ptr<std::atomic<bool>> stopping;
  std::mutex mutex;                  // guards loop
  std::condition_variable started;   // signalled once loop is set
  MessageLoop* loop = nullptr;
};

Thread::Thread(const char* name) : name_(name ? name : "") {}

Thread::~Thread() { Stop(); }

bool Thread::StartWithOptions(const Options& options) {
  if (started_) return false;
  Startup startup;
  startup.type = options.message_loop_type;
  startup.name = &name_;
  startup.stopping = std::make_shared<std::atomic<bool>>(false);

  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  if (options.stack_size > 0) pthread_attr_setstacksize(&attributes, options.stack_size);
  const int created = pthread_create(&thread_, &attributes, &Thread::ThreadMain, &startup);
  pthread_attr_destroy(&attributes);
  if (created != 0) return false;

  std::unique_lock<std::mutex> lock(startup.mutex);
  startup.started.wait(lock, [&] { return startup.loop != nullptr; });
  message_loop_ = startup.loop;
  stopping_ = std::move(startup.stopping);
  started_ = true;
  return true;
}

void Thread::Stop() {
  if (!started_) return;
  started_ = false;
  stopping_->store(true, std::memory_order_release);
  message_loop_->QuitWhenIdle();
  message_loop_ = nullptr;
  if (pthread_equal(thread_, pthread_self())) {
    pthread_detach(thread_);
  } else {
    pthread_join(thread_, nullptr);
  }
}

void* Thread::ThreadMain(void* argument) {
  auto* startup = static_cast<Startup*>(argument);
  // The kernel keeps at most 15 characters of a thread's name.
  pthread_setname_np(pthread_self(), startup->name->substr(0, 15).c_str());
  MessageLoop loop(startup->type, *startup->name);
  const std::shared_ptr<std::atomic<bool>> stopping = startup->stopping;
  {
    std::lock_guard<std::mutex> lock(startup->mutex);
    startup->loop = &loop;
    startup->started.notify_one();
  }
  // `startup` is gone from here on.
  do {
    loop.Run();
  } while (!stopping->load(std::memory_order_acquire));
  return nullptr;
}

}  // namespace base
