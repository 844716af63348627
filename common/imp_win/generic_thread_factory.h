// GenericThreadFactory is the library's PlatformThreadFactory: it makes
// GenericThread objects and finds the thread object of the calling thread.
// Every thread it creates with a loop is registered under its thread key
// (the loop's thread name); the registry never keeps a thread alive. A later
// thread with the same key takes the entry over; when it ends, the newest
// older thread of that key still alive becomes the entry again. All
// operations may be called from any thread at once.
#ifndef TESSEL_COMMON_IMP_WIN_GENERIC_THREAD_FACTORY_H_
#define TESSEL_COMMON_IMP_WIN_GENERIC_THREAD_FACTORY_H_

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/imp_win/generic_thread.h"
#include "common/tessel_export.h"
#include "gen/platform_thread.h"
#include "gen/platform_thread_factory.h"
#include "gen/thread_type.h"

namespace tessel {

class TESSEL_API GenericThreadFactory : public tessel_gen::PlatformThreadFactory {
 public:
  GenericThreadFactory();
  // Copies share the registered thread objects; the registry of the copy is
  // independent from then on.
  GenericThreadFactory(const GenericThreadFactory& other);
  GenericThreadFactory& operator=(const GenericThreadFactory& other);
  ~GenericThreadFactory() override;

  // A new GenericThread (see there for what `name` and `type` mean), which
  // the caller owns. Registered under its thread key when it has a loop.
  std::shared_ptr<tessel_gen::PlatformThread> CreateThread(const std::string& name,
                                                           tessel_gen::ThreadType type) override;
  // True when the calling thread's current loop is a user-interface loop.
  bool IsMainThread() override;
  // The entry for the calling thread's loop name (its newest live thread),
  // when that thread runs the calling thread's loop; otherwise empty (no
  // loop, no live thread under its name, or the entry is a namesake).
  std::shared_ptr<tessel_gen::PlatformThread> current_thread() override;

 private:
  // Per key, the threads registered under it, oldest first.
  using Registry =
      std::unordered_map<std::string, std::vector<std::weak_ptr<GenericThread>>>;
  // Drops ended threads once the registry has doubled since the last sweep,
  // so its size stays proportional to the live threads.
  void SweepEndedLocked();

  mutable std::mutex registry_mutex_;  // guards registry_, registered_ and sweep_at_
  Registry registry_;
  std::size_t registered_ = 0;  // threads in registry_, ended ones included
  std::size_t sweep_at_ = 16;   // registered_ count that triggers the next sweep
};

}  // namespace tessel

#endif  // TESSEL_COMMON_IMP_WIN_GENERIC_THREAD_FACTORY_H_
