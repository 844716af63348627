#include "common/imp_win/generic_thread_factory.h"

#include <algorithm>
#include <iterator>

#include "platform/base/message_loop.h"

namespace tessel {

GenericThreadFactory::GenericThreadFactory() = default;

GenericThreadFactory::GenericThreadFactory(const GenericThreadFactory& other) {
  std::lock_guard<std::mutex> lock(other.registry_mutex_);
  registry_ = other.registry_;
  registered_ = other.registered_;
  sweep_at_ = other.sweep_at_;
}

GenericThreadFactory& GenericThreadFactory::operator=(const GenericThreadFactory& other) {
  if (this == &other) return *this;
  std::scoped_lock lock(registry_mutex_, other.registry_mutex_);
  registry_ = other.registry_;
  registered_ = other.registered_;
  sweep_at_ = other.sweep_at_;
  return *this;
}

GenericThreadFactory::~GenericThreadFactory() = default;

std::shared_ptr<tessel_gen::PlatformThread> GenericThreadFactory::CreateThread(
    const std::string& name, tessel_gen::ThreadType type) {
  auto thread = std::make_shared<GenericThread>(name, type);
  if (thread->has_loop()) {
    std::lock_guard<std::mutex> lock(registry_mutex_);
    registry_[thread->thread_key()].push_back(thread);
    ++registered_;
    SweepEndedLocked();
  }
  return thread;
}

bool GenericThreadFactory::IsMainThread() {
  const base::MessageLoop* loop = base::MessageLoop::current();
  return loop != nullptr && loop->type() == base::MessageLoop::TYPE_UI;
}

std::shared_ptr<tessel_gen::PlatformThread> GenericThreadFactory::current_thread() {
  const base::MessageLoop* loop = base::MessageLoop::current();
  if (loop == nullptr) return nullptr;
  std::shared_ptr<GenericThread> thread;
  {
    std::lock_guard<std::mutex> lock(registry_mutex_);
    auto found = registry_.find(loop->thread_name());
    if (found != registry_.end()) {
      for (auto entry = found->second.rbegin(); !thread && entry != found->second.rend(); ++entry) {
        thread = entry->lock();
      }
    }
  }
  if (!thread || !thread->IsCurrentThread()) return nullptr;
  return thread;
}

void GenericThreadFactory::SweepEndedLocked() {
  if (registered_ < sweep_at_) return;
  registered_ = 0;
  for (auto key = registry_.begin(); key != registry_.end();) {
    auto& threads = key->second;
    threads.erase(std::remove_if(threads.begin(), threads.end(),
                                 [](const auto& thread) { return thread.expired(); }),
                  threads.end());
    registered_ += threads.size();
    key = threads.empty() ? registry_.erase(key) : std::next(key);
  }
  sweep_at_ = 2 * registered_ + 16;
}

}  // namespace tessel
