// What needs Linux to observe: a sleeping loop's wake-ups, the memory of
// queued and delayed tasks, a native poll loop, a thread's system name.
#include <gtest/gtest.h>
#include <malloc.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/base/message_loop.h"
#include "platform/base/thread.h"
#include "../watchdog.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using threading_test::kWatchdog;
using threading_test::ReadyOrAbort;

// Voluntary context switches of one thread: each time it blocked.
long BlockedCount(pid_t tid) {
  std::ifstream status("/proc/self/task/" + std::to_string(tid) + "/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("voluntary_ctxt_switches:", 0) == 0) return std::stol(line.substr(24));
  }
  return -1;
}

TEST(DelayedTasks, LoopSleepsUntilTheEarliestDeadlineWithoutPolling) {
  base::Thread thread("sleeper");
  ASSERT_TRUE(thread.StartWithOptions(base::Thread::Options()));
  auto runner = thread.task_runner();
  std::promise<pid_t> tid;
  runner->PostTask(FROM_HERE, [&] { tid.set_value(gettid()); });
  auto tid_future = tid.get_future();
  ReadyOrAbort(tid_future, "the sleeper's first task");
  const pid_t worker = tid_future.get();
  if (BlockedCount(worker) < 0) GTEST_SKIP() << "no per-thread switch counts here";

  std::promise<void> fired;
  const Clock::time_point posted = Clock::now();
  runner->PostDelayedTask(FROM_HERE, [&] { fired.set_value(); }, 1s);
  runner->PostDelayedTask(FROM_HERE, [] {}, 1h);  // a later deadline must not wake it
  std::this_thread::sleep_for(200ms);             // the posts taken in, only sleep follows
  const long before = BlockedCount(worker);
  ReadyOrAbort(fired.get_future(), "the delayed task");
  EXPECT_GE(Clock::now() - posted, 1s);
  // Woken once, at the deadline (an emulator's own locks add a few more): a
  // loop that polled even every 20 ms would have blocked and woken forty
  // times meanwhile.
  EXPECT_LE(BlockedCount(worker) - before, 10);
}

// Linux keeps 15 bytes of a name; a character straddling them goes whole.
TEST(ThreadName, SystemCopyEndsOnACharacterBoundary) {
  base::Thread thread("abcdefghijklmn\xC3\xA9-more");
  ASSERT_TRUE(thread.StartWithOptions(base::Thread::Options()));
  std::promise<std::string> name;
  thread.task_runner()->PostTask(FROM_HERE, [&name] {
    char buffer[16] = {};
    pthread_getname_np(pthread_self(), buffer, sizeof buffer);
    name.set_value(buffer);
  });
  auto seen = name.get_future();
  ReadyOrAbort(seen, "a task on the named thread");
  EXPECT_EQ(seen.get(), "abcdefghijklmn");
}

// Bytes the C library's allocator has handed out, large mappings included.
std::size_t HeapInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

TEST(DelayedTasks, HundredThousandPendingCostFewMegabytesAndDieUnrun) {
  constexpr int kPending = 100000;
  auto token = std::make_shared<int>(0);
  const std::size_t heap_before = HeapInUse();
  {
    base::MessageLoop loop;
    for (int i = 0; i < kPending; ++i) {
      loop.PostDelayedTask(FROM_HERE, [token] { ++*token; }, 1h + std::chrono::seconds(i % 977));
    }
    const std::size_t heap_after = HeapInUse();
    if (heap_after > heap_before) {  // zero under sanitizers, which count apart
      EXPECT_LT(heap_after - heap_before, 100u * kPending) << "bytes for the pending tasks";
    }
    bool due_ran = false;
    loop.PostDelayedTask(FROM_HERE, [&] { due_ran = true; }, 1ns);
    const auto next = loop.TimeUntilNextDelayedTask();
    ASSERT_TRUE(next.has_value());
    EXPECT_LE(*next, 1ms);
    while (!due_ran) loop.RunUntilIdle();
    EXPECT_GT(*loop.TimeUntilNextDelayedTask(), 59min);
    EXPECT_EQ(token.use_count(), kPending + 1);
  }
  EXPECT_EQ(*token, 0);
  EXPECT_EQ(token.use_count(), 1);
}

TEST(DelayedTasks, HeapStorageGoesBackOnceDrained) {
  base::MessageLoop loop;
  loop.PostDelayedTask(FROM_HERE, [] {}, 1h);  // stays pending, as a repeating timer's would
  const std::size_t before = HeapInUse();
  for (int i = 0; i < 100000; ++i) loop.PostDelayedTask(FROM_HERE, [] {}, 1ns);
  const std::size_t pending = HeapInUse();
  while (loop.TimeUntilNextDelayedTask() < 1min) loop.RunUntilIdle();
  if (pending <= before) GTEST_SKIP() << "the allocator's figures are not available here";
  EXPECT_LT(HeapInUse() - std::min(before, HeapInUse()), (pending - before) / 20);
}

TEST(TaskQueue, BurstMemoryGoesBackOnceDrained) {
  constexpr int kBurst = 200000;
  base::Thread thread("burst");
  ASSERT_TRUE(thread.StartWithOptions(base::Thread::Options()));
  auto runner = thread.task_runner();
  std::promise<void> gate;
  runner->PostTask(FROM_HERE, [opened = gate.get_future().share()] { opened.wait(); });
  const std::size_t before = HeapInUse();
  for (int i = 0; i < kBurst; ++i) runner->PostTask(FROM_HERE, [] {});
  const std::size_t queued = HeapInUse();
  EXPECT_LT(queued - std::min(before, queued), (sizeof(base::Closure) + 16) * kBurst)
      << "bytes per queued task: a slot each, and little else";
  std::promise<void> drained;
  runner->PostTask(FROM_HERE, [&] { drained.set_value(); });
  gate.set_value();
  ReadyOrAbort(drained.get_future(), "the burst draining");
  // The spare chunks go once the loop has been idle for a second.
  std::promise<void> idle_a_while;
  runner->PostDelayedTask(FROM_HERE, [&] { idle_a_while.set_value(); }, 1500ms);
  ReadyOrAbort(idle_a_while.get_future(), "a quiet second and a half");
  if (queued <= before) GTEST_SKIP() << "the allocator's figures are not available here";
  EXPECT_LT(HeapInUse() - std::min(before, HeapInUse()), (queued - before) / 20);
}

// A host's own poll loop on an eventfd drives the user-interface loop: the
// hook only makes poll() return, and the timeout comes from the loop.
TEST(WakeUpHook, DrivesTheUiLoopFromAHandWrittenPollLoop) {
  base::MessageLoop ui(base::MessageLoop::TYPE_UI, "native");
  const int wake_fd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  ASSERT_GE(wake_fd, 0);
  std::atomic<int> hook_calls{0};
  ui.SetWakeUpHook([&] {
    ++hook_calls;
    const uint64_t one = 1;
    EXPECT_EQ(write(wake_fd, &one, sizeof one), static_cast<ssize_t>(sizeof one));
  });
  std::vector<std::string> ran;
  bool done = false;
  const Clock::time_point start = Clock::now();
  auto runner = base::GetUIMessageLoopTaskRunner();
  ASSERT_EQ(runner, ui.task_runner());
  runner->PostDelayedTask(FROM_HERE, [&] { ran.push_back("50ms"); }, 50ms);
  EXPECT_EQ(hook_calls, 1);  // new earliest deadline
  runner->PostDelayedTask(FROM_HERE, [&] { ran.push_back("120ms"), done = true; }, 120ms);
  EXPECT_EQ(hook_calls, 1);  // deadline did not move earlier
  std::thread worker([runner, &ran] {
    runner->PostTask(FROM_HERE, [&ran] { ran.push_back("posted"); });
  });
  worker.join();
  EXPECT_EQ(hook_calls, 2);  // idle loop got work

  int rounds = 0;
  while (!done && Clock::now() - start < kWatchdog) {
    ++rounds;
    ui.RunUntilIdle();
    const auto next = ui.TimeUntilNextDelayedTask();
    const int timeout_ms =
        next ? static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(*next).count()) : -1;
    pollfd wake{wake_fd, POLLIN, 0};
    if (!done) poll(&wake, 1, timeout_ms);
    uint64_t count;
    (void)!read(wake_fd, &count, sizeof count);
  }
  EXPECT_EQ(ran, (std::vector<std::string>{"posted", "50ms", "120ms"}));
  EXPECT_GE(Clock::now() - start, 120ms);
  EXPECT_LE(rounds, 6);  // woken for work and deadlines only
  ui.SetWakeUpHook(nullptr);
  runner->PostTask(FROM_HERE, [] {});
  EXPECT_EQ(hook_calls, 2);
  close(wake_fd);
}

}  // namespace
