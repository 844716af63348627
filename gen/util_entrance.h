// UtilEntrance is the entry through which the host hands its platform
// implementations to the SDK core, once, before the core needs any of them.
#ifndef TESSEL_GEN_UTIL_ENTRANCE_H_
#define TESSEL_GEN_UTIL_ENTRANCE_H_

#include <memory>

#include "common/tessel_export.h"
#include "gen/platform_file_manager.h"
#include "gen/platform_thread_factory.h"
#include "gen/platform_timer.h"

namespace tessel_gen {

class TESSEL_API UtilEntrance {
 public:
  UtilEntrance() = default;
  UtilEntrance(const UtilEntrance&) = default;
  UtilEntrance& operator=(const UtilEntrance&) = default;
  virtual ~UtilEntrance() = default;

  // Stores, in this order, the thread factory, the timer and the file manager
  // in the process-wide GlobalNativeImpHolder (each step fetching the holder
  // anew), then asks the factory for the thread "main" of type 0 and stores it
  // as the holder's main_thread. Nothing is checked: empty pointers are stored
  // as given; with an empty factory the first three steps are done and
  // main_thread is left empty. An exception from CreateThread propagates
  // after the first three steps, leaving main_thread as it was.
  // Not thread-safe: call it before other threads use the holder.
  static void InjectPlatformImp(
      const std::shared_ptr<PlatformThreadFactory>& thread_factory,
      const std::shared_ptr<PlatformFileManager>& file_manager,
      const std::shared_ptr<PlatformTimer>& timer);
};

}  // namespace tessel_gen

#endif  // TESSEL_GEN_UTIL_ENTRANCE_H_
