// PlatformThreadFactory makes the SDK core's threads and tells the core which
// thread it runs on. The slot order of the virtual operations is part of the
// contract.
#ifndef TESSEL_GEN_PLATFORM_THREAD_FACTORY_H_
#define TESSEL_GEN_PLATFORM_THREAD_FACTORY_H_

#include <memory>
#include <string>

#include "common/tessel_export.h"
#include "gen/platform_thread.h"
#include "gen/thread_type.h"

namespace tessel_gen {

class TESSEL_API PlatformThreadFactory {
 public:
  virtual ~PlatformThreadFactory() = default;

  virtual std::shared_ptr<PlatformThread> CreateThread(const std::string& name,
                                                       ThreadType type) = 0;
  // True when the calling thread is the main (user-interface) thread.
  virtual bool IsMainThread() = 0;
  // The thread object of the calling thread, or empty.
  virtual std::shared_ptr<PlatformThread> current_thread() = 0;
};

}  // namespace tessel_gen

#endif  // TESSEL_GEN_PLATFORM_THREAD_FACTORY_H_
