// Injection: the host hands its platform implementations to the library once,
// and reads them back through the process-wide holder.
#include "demo_section.h"
#include "tessel_depends.h"

namespace {

void Run() {
  using Holder = tessel::Singleton<tessel::GlobalNativeImpHolder>;
  tessel::UtilEntrance::InjectPlatformImp(nullptr, nullptr, nullptr);
  auto holder = Holder::sharedInstance(false);
  demo::Show("holder", holder ? "created" : "missing");
  demo::Show("thread_factory", holder->thread_factory ? "set" : "empty");
  demo::Show("main_thread", holder->main_thread ? "set" : "empty");
}

const bool kRegistered = demo::Register(20, "Platform injection", Run);

}  // namespace
