// Injection: the host hands its platform implementations to the library once,
// and reads them back through the process-wide holder.
#include <memory>
#include <string>

#include "demo_section.h"
#include "tessel_depends.h"

namespace {

void Run() {
  using Holder = tessel::Singleton<tessel::GlobalNativeImpHolder>;
  tessel::UtilEntrance::InjectPlatformImp(std::make_shared<tessel::GenericThreadFactory>(),
                                          std::make_shared<tessel::GenericFileManager>(),
                                          std::make_shared<tessel::GenericTImer>());
  auto holder = Holder::sharedInstance(false);
  demo::Show("holder", holder ? "created" : "missing");
  demo::Show("thread_factory", holder->thread_factory ? "set" : "empty");
  demo::Show("file_manager", holder->file_manager ? holder->file_manager->LogDir() : "empty");
  demo::Show("timer", holder->timer ? "set" : "empty");
  demo::Show("main_thread", holder->main_thread ? "set" : "empty");
  if (holder->main_thread) {
    demo::Show("main_thread type", std::to_string(holder->main_thread->type()));
  }
}

const bool kRegistered = demo::Register(20, "Platform injection", Run);

}  // namespace
