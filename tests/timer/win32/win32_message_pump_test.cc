// The Win32 pump: a host's plain GetMessage loop on the main thread runs the
// user-interface loop's tasks and a MessageLoopTimer's ticks, and
// PostQuitMessage ends it.
#include <gtest/gtest.h>

#include <windows.h>

#include <chrono>
#include <memory>
#include <vector>

#include "common/imp_win/generic_thread_factory.h"
#include "common/imp_win/message_loop_timer.h"
#include "platform/base/message_loop.h"
#include "platform/win/win32_message_pump.h"

namespace {

using Clock = std::chrono::steady_clock;

TEST(Win32MessagePump, RunsTasksAndTimersInsideAPlainMessageLoop) {
  base::MessageLoop ui(base::MessageLoop::TYPE_UI, "main");
  base::Win32MessagePump pump(&ui);
  ASSERT_TRUE(pump.attached());
  tessel::GenericThreadFactory factory;
  auto main = std::dynamic_pointer_cast<tessel::GenericThread>(
      factory.CreateThread("main", tessel_gen::ThreadTypeMain));
  auto worker = factory.CreateThread("worker", tessel_gen::ThreadTypeWorker);
  ASSERT_TRUE(main);
  tessel::MessageLoopTimer timer(main);

  // Main-thread state: touched by tasks and callbacks that the loop below runs.
  bool sync_ran_on_main = false;
  std::vector<Clock::time_point> ticks;
  auto quit_when_both_done = [&] {
    if (sync_ran_on_main && ticks.size() == 10) PostQuitMessage(0);
  };
  worker->DispatchAsync([&] {
    main->DispatchSync([&] {
      sync_ran_on_main = factory.IsMainThread();
      quit_when_both_done();
    });
  });
  const Clock::time_point start = Clock::now();
  int id = 0;
  id = timer.CreateTimer(0.02, true, [&] {
    ticks.push_back(Clock::now());
    if (ticks.size() < 10) return;
    timer.InvalidateTimer(id);
    quit_when_both_done();
  });
  ASSERT_GT(id, 0);

  const UINT_PTR watchdog = SetTimer(nullptr, 0, 20000, nullptr);
  bool timed_out = false;
  MSG msg;
  while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
    if (msg.message == WM_TIMER && msg.hwnd == nullptr && msg.wParam == watchdog) {
      timed_out = true;
      break;
    }
    TranslateMessage(&msg);
    DispatchMessageW(&msg);
  }
  KillTimer(nullptr, watchdog);

  EXPECT_FALSE(timed_out);
  EXPECT_EQ(msg.message, static_cast<UINT>(WM_QUIT));
  EXPECT_TRUE(sync_ran_on_main);
  ASSERT_EQ(ticks.size(), 10u);
  for (std::size_t i = 0; i < ticks.size(); ++i) {
    EXPECT_GE(ticks[i] - start, std::chrono::milliseconds(20) * (i + 1)) << "tick " << i + 1;
  }
}

}  // namespace
