// Timers: the injected MessageLoopTimer fires a repeating timer on the main
// thread while the host runs its user-interface loop, until the callback
// invalidates it. The loop sleeps between ticks; nothing polls.
#include <string>

#include "demo_section.h"
#include "platform/base/message_loop.h"
#include "tessel_depends.h"

namespace {

void Run() {
  auto holder = tessel::Singleton<tessel::GlobalNativeImpHolder>::sharedInstance(false);
  base::MessageLoop* ui = base::GetUIMessageLoop();
  if (!holder || !holder->timer || !holder->thread_factory || ui == nullptr) {
    demo::Show("timer", "no timer injected");
    return;
  }
  auto timer = holder->timer;
  auto factory = holder->thread_factory;

  int fired = 0;
  bool on_main = true;
  int id = 0;
  id = timer->CreateTimer(0.05, true, [&] {
    ++fired;
    on_main = on_main && factory->IsMainThread();
    if (fired < 3) return;
    timer->InvalidateTimer(id);
    ui->Quit();
  });
  // Should the timer never fire, the demo still ends.
  const int guard = timer->CreateTimer(5.0, false, [ui] { ui->Quit(); });
  ui->Run();
  timer->InvalidateTimer(guard);
  demo::Show("repeating timer every 50 ms", "id " + std::to_string(id));
  demo::Show("fired, then invalidated by its callback", std::to_string(fired) + " times");
  demo::Show("ran on the main thread", on_main ? "yes" : "no");
  demo::Show("CreateTimer with a negative interval", std::to_string(timer->CreateTimer(-1, false, [] {})));
  demo::Show("GenericTImer, which schedules nothing, returns",
             std::to_string(tessel::GenericTImer().CreateTimer(0.05, true, [] {})));
}

const bool kRegistered = demo::Register(35, "Timers", Run);

}  // namespace
