#include "common/imp_win/generic_thread.h"

#include <exception>
#include <utility>

#include "common/semaphore.h"
#include "platform/base/callback.h"
#include "platform/base/location.h"
#include "platform/base/message_loop.h"
#include "platform/base/thread.h"

namespace tessel {

namespace {

using Task = std::function<void()>;

// An exception must never end a loop's thread; an asynchronous caller has
// nobody to hand it to.
void RunAsyncTask(const Task& task) {
  try {
    task();
  } catch (...) {
  }
}

// Runs the task for a caller blocked in DispatchSync on `done`, leaving any
// exception in `error` for that caller to rethrow.
void RunSyncTask(Semaphore* done, std::exception_ptr* error, const Task& task) {
  try {
    task();
  } catch (...) {
    *error = std::current_exception();
  }
  done->notify();
}

base::MessageLoop* StartWorker(std::unique_ptr<base::Thread>& thread, const std::string& name) {
  thread = std::make_unique<base::Thread>(name.c_str());
  thread->StartWithOptions(base::Thread::Options());
  return thread->message_loop();
}

}  // namespace

GenericThread::GenericThread(const std::string& name, tessel_gen::ThreadType type)
    : message_loop_(nullptr), type_(type) {
  message_loop_ = type == tessel_gen::ThreadTypeMain ? base::GetUIMessageLoop()
                                                     : StartWorker(thread_, name);
}

GenericThread::~GenericThread() = default;

void GenericThread::DispatchSync(std::function<void()> task) {
  if (!message_loop_ || !task) return;
  if (IsCurrentThread()) {
    task();
    return;
  }
  Semaphore done;
  std::exception_ptr error;
  message_loop_->PostTask(
      tracked_objects::Location("tessel::GenericThread::DispatchSync", __FILE__, __LINE__,
                                tracked_objects::GetProgramCounter()),
      base::Bind(&RunSyncTask, &done, &error, std::move(task)));
  done.wait();
  if (error) std::rethrow_exception(error);
}

int GenericThread::DispatchAsync(std::function<void()> task) {
  if (!message_loop_ || !task) return 0;
  message_loop_->PostTask(
      tracked_objects::Location("tessel::GenericThread::DispatchAsync", __FILE__, __LINE__,
                                tracked_objects::GetProgramCounter()),
      base::Bind(&RunAsyncTask, std::move(task)));
  return 0;
}

void GenericThread::CancelTask(int) {}

tessel_gen::ThreadType GenericThread::type() { return type_; }

std::string GenericThread::name() { return thread_ ? thread_->thread_name() : std::string(); }

bool GenericThread::IsCurrentThread() { return message_loop_ == base::MessageLoop::current(); }

void GenericThread::set_value(const std::string& value, const std::string& key) {
  if (IsCurrentThread()) values_[key] = value;
}

std::string GenericThread::value_for_key(const std::string& key) {
  auto found = values_.find(key);
  return found == values_.end() ? std::string() : found->second;
}

const std::string& GenericThread::thread_key() const {
  static const std::string kNoLoop;
  return message_loop_ ? message_loop_->thread_name() : kNoLoop;
}

}  // namespace tessel
