#include "common/util_entrance.h"

#include "common/global_native_imp_holder.h"
#include "common/singleton.h"

namespace tessel {

template class Singleton<GlobalNativeImpHolder>;

}  // namespace tessel

namespace tessel_gen {

namespace {

// Runs one injection step on a freshly fetched holder; after the holder has
// been released there is none, and the step does nothing.
template <typename Step>
void OnHolder(Step step) {
  if (auto holder =
          tessel::Singleton<tessel::GlobalNativeImpHolder>::sharedInstance(false)) {
    step(*holder);
  }
}

}  // namespace

void UtilEntrance::InjectPlatformImp(
    const std::shared_ptr<PlatformThreadFactory>& thread_factory,
    const std::shared_ptr<PlatformFileManager>& file_manager,
    const std::shared_ptr<PlatformTimer>& timer) {
  using Holder = tessel::GlobalNativeImpHolder;
  OnHolder([&](Holder& h) { h.thread_factory = thread_factory; });
  OnHolder([&](Holder& h) { h.timer = timer; });
  OnHolder([&](Holder& h) { h.file_manager = file_manager; });
  std::shared_ptr<PlatformThread> main_thread;
  if (thread_factory) main_thread = thread_factory->CreateThread("main", ThreadTypeMain);
  OnHolder([&](Holder& h) { h.main_thread = std::move(main_thread); });
}

}  // namespace tessel_gen
