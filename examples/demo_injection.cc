// Injection: the host hands its platform implementations to the library once,
// and reads them back through the process-wide holder.
#include <memory>
#include <string>

#include "demo_section.h"
#include "tessel_depends.h"

namespace {

void Run() {
  using Holder = tessel::Singleton<tessel::GlobalNativeImpHolder>;
  // GenericTImer schedules nothing; a host that wants the core's timers to
  // fire injects a MessageLoopTimer, here one whose callbacks run on the
  // main thread's user-interface loop.
  auto factory = std::make_shared<tessel::GenericThreadFactory>();
  auto main = std::dynamic_pointer_cast<tessel::GenericThread>(
      factory->CreateThread("main", tessel_gen::ThreadTypeMain));
  tessel::UtilEntrance::InjectPlatformImp(factory,
                                          std::make_shared<tessel::GenericFileManager>(),
                                          std::make_shared<tessel::MessageLoopTimer>(main));
  auto holder = Holder::sharedInstance(false);
  demo::Show("holder", holder ? "created" : "missing");
  demo::Show("thread_factory", holder->thread_factory ? "set" : "empty");
  demo::Show("file_manager", holder->file_manager ? holder->file_manager->LogDir() : "empty");
  demo::Show("timer", holder->timer ? "MessageLoopTimer on the main thread" : "empty");
  demo::Show("main_thread", holder->main_thread ? "set" : "empty");
  if (holder->main_thread) {
    demo::Show("main_thread type", std::to_string(holder->main_thread->type()));
  }
}

const bool kRegistered = demo::Register(20, "Platform injection", Run);

}  // namespace
