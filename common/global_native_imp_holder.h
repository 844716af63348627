// GlobalNativeImpHolder keeps the platform implementations injected by the
// host, and the main thread made from the injected factory. It is reached
// through Singleton<GlobalNativeImpHolder>::sharedInstance(false). Its fields
// are not guarded: injection happens before other threads read them.
#ifndef TESSEL_COMMON_GLOBAL_NATIVE_IMP_HOLDER_H_
#define TESSEL_COMMON_GLOBAL_NATIVE_IMP_HOLDER_H_

#include <memory>

#include "common/tessel_export.h"
#include "gen/platform_file_manager.h"
#include "gen/platform_thread.h"
#include "gen/platform_thread_factory.h"
#include "gen/platform_timer.h"

namespace tessel {

// Copies share the four objects; destruction releases the fields in reverse
// order (main_thread first, thread_factory last), as members are destroyed.
struct TESSEL_API GlobalNativeImpHolder {
  std::shared_ptr<tessel_gen::PlatformThreadFactory> thread_factory;
  std::shared_ptr<tessel_gen::PlatformTimer> timer;
  std::shared_ptr<tessel_gen::PlatformFileManager> file_manager;
  std::shared_ptr<tessel_gen::PlatformThread> main_thread;
};

}  // namespace tessel

#endif  // TESSEL_COMMON_GLOBAL_NATIVE_IMP_HOLDER_H_
