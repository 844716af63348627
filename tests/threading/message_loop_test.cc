// The base library's loop and thread, on which GenericThread is built.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "common/semaphore.h"
#include "platform/base/callback.h"
#include "platform/base/location.h"
#include "platform/base/message_loop.h"
#include "platform/base/thread.h"
#include "platform/base/thread_name.h"
#include "watchdog.h"

namespace {

using threading_test::ReadyOrAbort;
using threading_test::Within;

void Append(std::vector<int>* out, int value) { out->push_back(value); }

TEST(MessageLoop, QuitStopsRunAfterTheTaskInProgressAndKeepsTheRest) {
  base::MessageLoop loop;
  std::vector<int> ran;
  loop.PostTask(FROM_HERE, base::Bind(&Append, &ran, 1));
  loop.PostTask(FROM_HERE, base::Bind(&Append, &ran, 2));
  loop.PostTask(FROM_HERE, [&] { loop.Quit(); });
  loop.PostTask(FROM_HERE, base::Bind(&Append, &ran, 3));
  loop.Run();
  EXPECT_EQ(ran, (std::vector<int>{1, 2}));
  loop.Quit();  // for the next Run(): a native loop's RunUntilIdle() leaves it
  loop.RunUntilIdle();
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3}));
  EXPECT_TRUE(threading_test::RunGuarded(loop));  // returns at once
  // QuitWhenIdle runs tasks posted by tasks first.
  loop.QuitWhenIdle();
  loop.PostTask(FROM_HERE, [&] {
    ran.push_back(4);
    loop.PostTask(FROM_HERE, [&] { ran.push_back(5); });
  });
  loop.Run();
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3, 4, 5}));
}

TEST(MessageLoop, DestructionRunsWhatIsStillQueued) {
  int ran = 0;
  {
    base::MessageLoop loop;
    for (int i = 0; i < 3; ++i) loop.PostTask(FROM_HERE, [&] { ++ran; });
    loop.PostTask(FROM_HERE, base::Closure());  // empty: dropped
  }
  EXPECT_EQ(ran, 3);
}

TEST(MessageLoop, BindsToTheConstructingThreadOnly) {
  EXPECT_EQ(base::MessageLoop::current(), nullptr);
  {
    base::MessageLoop loop(base::MessageLoop::TYPE_DEFAULT, "here");
    EXPECT_EQ(base::MessageLoop::current(), &loop);
    EXPECT_EQ(loop.thread_name(), "here");
    auto elsewhere = std::async(std::launch::async, [] { return base::MessageLoop::current(); });
    ASSERT_TRUE(Within(elsewhere));
    EXPECT_EQ(elsewhere.get(), nullptr);
  }
  EXPECT_EQ(base::MessageLoop::current(), nullptr);
}

TEST(MessageLoop, FirstUserInterfaceLoopIsRegisteredWhileItLives) {
  EXPECT_EQ(base::GetUIMessageLoop(), nullptr);
  {
    base::MessageLoop plain;
    EXPECT_EQ(base::GetUIMessageLoop(), nullptr);
  }
  {
    base::MessageLoop ui(base::MessageLoop::TYPE_UI, "ui");
    EXPECT_EQ(base::GetUIMessageLoop(), &ui);
    auto second = std::async(std::launch::async, [] {
      base::MessageLoop other(base::MessageLoop::TYPE_UI, "other");
      return base::GetUIMessageLoop() == &other;
    });
    ASSERT_TRUE(Within(second));
    EXPECT_FALSE(second.get());
    EXPECT_EQ(base::GetUIMessageLoop(), &ui);
  }
  EXPECT_EQ(base::GetUIMessageLoop(), nullptr);
}

// The cut keeps whole characters: a 2-, 3- or 4-byte character straddling
// the limit goes entirely; bytes that are not UTF-8 are cut like any byte.
TEST(ThreadName, IsCutAtACharacterBoundary) {
  const struct {
    const char* name;
    std::size_t limit;
    const char* cut;
  } cases[] = {
      {"abcdefghijklm\xC3\xA9z", 15, "abcdefghijklm\xC3\xA9"},  // é just fits
      {"a\xF0\x9F\x98\x80", 4, "a"},                         // emoji: 4 bytes
      {"abc\x80\x80\x80\x80", 5, "abc\x80\x80"},                // stray continuations
  };
  for (const auto& c : cases) {
    EXPECT_EQ(base::CutAtCharacterBoundary(c.name, c.limit), c.cut) << c.name;
  }
}

// Stopping is sticky: a Run() nested inside a task returns once the queue is
// empty, and so does the outer one, instead of sleeping for ever.
TEST(Thread, StopEndsNestedRunsToo) {
  base::Thread thread("nested");
  ASSERT_TRUE(thread.StartWithOptions(base::Thread::Options()));
  base::MessageLoop* loop = thread.message_loop();
  std::promise<void> nested;
  thread.task_runner()->PostTask(FROM_HERE, [loop, &nested] {
    nested.set_value();
    loop->Run();
  });
  ReadyOrAbort(nested.get_future(), "the nested Run()");
  auto stopped = std::async(std::launch::async, [&thread] { thread.Stop(); });
  ReadyOrAbort(stopped, "a stop while a nested Run() waits");
}

// A stray Quit() ends one Run(), not the thread: a task due later still runs.
TEST(Thread, StrayQuitLeavesTheThreadRunning) {
  base::Thread thread("stray-quit");
  ASSERT_TRUE(thread.StartWithOptions(base::Thread::Options()));
  std::promise<void> later;
  thread.task_runner()->PostTask(FROM_HERE, [] { base::MessageLoop::current()->Quit(); });
  thread.task_runner()->PostDelayedTask(
      FROM_HERE, [&later] { later.set_value(); }, std::chrono::milliseconds(50));
  ReadyOrAbort(later.get_future(), "a task due after a stray Quit()");
}

TEST(Thread, LoopExistsWhenStartReturnsAndCarriesTheName) {
  base::Thread thread("worker-1");
  EXPECT_EQ(thread.message_loop(), nullptr);
  ASSERT_TRUE(thread.StartWithOptions(base::Thread::Options{base::MessageLoop::TYPE_IO, 1 << 20}));
  EXPECT_FALSE(thread.StartWithOptions(base::Thread::Options()));
  base::MessageLoop* loop = thread.message_loop();
  ASSERT_NE(loop, nullptr);
  EXPECT_EQ(loop->thread_name(), "worker-1");
  EXPECT_EQ(loop->type(), base::MessageLoop::TYPE_IO);
  std::promise<base::MessageLoop*> seen;
  loop->PostTask(FROM_HERE, [&] { seen.set_value(base::MessageLoop::current()); });
  auto current = seen.get_future();
  ReadyOrAbort(current, "a task on the started thread");
  EXPECT_EQ(current.get(), loop);
  thread.Stop();
  EXPECT_EQ(thread.message_loop(), nullptr);
}

TEST(Thread, StopRunsEveryQueuedTaskAndReleasesABlockedPoster) {
  constexpr int kQueued = 5000;
  int ran = 0;  // written on the worker only; read after the join
  auto thread = std::make_unique<base::Thread>("drain");
  ASSERT_TRUE(thread->StartWithOptions(base::Thread::Options()));
  base::MessageLoop* loop = thread->message_loop();

  std::promise<void> gate;
  loop->PostTask(FROM_HERE, [opened = gate.get_future().share()] { opened.wait(); });
  for (int i = 0; i < kQueued; ++i) loop->PostTask(FROM_HERE, [&ran] { ++ran; });

  std::promise<void> posted;
  auto poster = std::async(std::launch::async, [&] {
    tessel::Semaphore done;
    loop->PostTask(FROM_HERE, [&done] { done.notify(); });
    posted.set_value();
    done.wait();
  });
  ReadyOrAbort(posted.get_future(), "the blocked poster's post");
  gate.set_value();
  thread.reset();
  EXPECT_EQ(ran, kQueued);
  ReadyOrAbort(poster, "release of the blocked poster");
}

TEST(Thread, ReleasedInsideItsOwnTaskFinishesTheQueueAlone) {
  auto* thread = new base::Thread("self-stop");
  ASSERT_TRUE(thread->StartWithOptions(base::Thread::Options()));
  // Shared with the detached thread, which outlives the test.
  auto later_task_ran = std::make_shared<std::promise<void>>();
  base::MessageLoop* loop = thread->message_loop();
  // Everything is queued before the thread may end: after that, its loop is
  // gone and nobody may post to it.
  std::promise<void> gate;
  loop->PostTask(FROM_HERE, [opened = gate.get_future().share()] { opened.wait(); });
  loop->PostTask(FROM_HERE, [thread] { delete thread; });
  loop->PostTask(FROM_HERE, [later_task_ran] { later_task_ran->set_value(); });
  gate.set_value();
  ReadyOrAbort(later_task_ran->get_future(), "the task queued behind the self-stop");
}

}  // namespace
