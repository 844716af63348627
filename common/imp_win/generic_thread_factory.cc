#include "common/imp_win/generic_thread_factory.h"

#include <iterator>

#include "platform/base/message_loop.h"

namespace tessel {

GenericThreadFactory::GenericThreadFactory() = default;

GenericThreadFactory::GenericThreadFactory(const GenericThreadFactory& other) {
  std::lock_guard<std::mutex> lock(other.registry_mutex_);
  registry_ = other.registry_;
  sweep_at_ = other.sweep_at_;
}

GenericThreadFactory& GenericThreadFactory::operator=(const GenericThreadFactory& other) {
  if (this == &other) return *this;
  std::scoped_lock lock(registry_mutex_, other.registry_mutex_);
  registry_ = other.registry_;
  sweep_at_ = other.sweep_at_;
  return *this;
}

GenericThreadFactory::~GenericThreadFactory() = default;

std::shared_ptr<tessel_gen::PlatformThread> GenericThreadFactory::CreateThread(
    const std::string& name, tessel_gen::ThreadType type) {
  auto thread = std::make_shared<GenericThread>(name, type);
  if (thread->has_loop()) {
    std::lock_guard<std::mutex> lock(registry_mutex_);
    registry_[thread->thread_key()] = thread;
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
    if (found != registry_.end()) thread = found->second.lock();
  }
  if (!thread || !thread->IsCurrentThread()) return nullptr;
  return thread;
}

void GenericThreadFactory::SweepEndedLocked() {
  if (registry_.size() < sweep_at_) return;
  for (auto entry = registry_.begin(); entry != registry_.end();) {
    entry = entry->second.expired() ? registry_.erase(entry) : std::next(entry);
  }
  sweep_at_ = 2 * registry_.size() + 16;
}

}  // namespace tessel
