// Workers under hostile use: owners letting go while producers still post,
// many callers blocking on one worker at once, tasks that throw in the middle
// of all that. Nothing posted may be lost, no caller may stay blocked, and
// the suite runs under ThreadSanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "common/imp_win/generic_thread_factory.h"
#include "watchdog.h"

namespace {

using tessel_gen::PlatformThread;
using threading_test::ReadyOrAbort;

constexpr tessel_gen::ThreadType kWorker = tessel_gen::ThreadTypeWorker;

// Starts `count` threads running `body(i)` and returns a future that becomes
// ready once all of them have been joined.
template <typename Body>
std::future<void> RunThreads(int count, Body body) {
  return std::async(std::launch::async, [count, body] {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back(body, i);
    for (auto& t : threads) t.join();
  });
}

TEST(HostileThreads, OwnerLetsGoWhileEightProducersPost) {
  constexpr int kProducers = 8, kPerProducer = 5000;
  constexpr int kTotal = kProducers * kPerProducer;
  tessel::GenericThreadFactory factory;
  auto ran = std::make_shared<std::atomic<int>>(0);
  auto all_ran = std::make_shared<std::promise<void>>();
  std::atomic<int> posted{0};
  {
    std::shared_ptr<PlatformThread> owner = factory.CreateThread("hostile-owner", kWorker);
    std::weak_ptr<PlatformThread> watch = owner;
    std::promise<void> go;
    std::shared_future<void> start = go.get_future().share();
    // Each producer holds its own reference; the owner drops its reference
    // while they post, so the worker is destroyed on whichever producer lets
    // go last, with tasks still queued.
    std::vector<std::shared_ptr<PlatformThread>> refs(kProducers, owner);
    auto producers = RunThreads(kProducers, [&, start](int i) {
      std::shared_ptr<PlatformThread> thread = std::move(refs[i]);
      start.wait();
      for (int n = 0; n < kPerProducer; ++n) {
        thread->DispatchAsync([ran, all_ran] {
          if (ran->fetch_add(1, std::memory_order_relaxed) + 1 == kTotal) all_ran->set_value();
        });
        posted.fetch_add(1, std::memory_order_relaxed);
      }
      thread.reset();
    });
    go.set_value();
    owner.reset();
    ReadyOrAbort(producers, "producers finishing");
    EXPECT_TRUE(watch.expired());
  }
  EXPECT_EQ(posted.load(), kTotal);
  // The release did not wait, but every queued task still runs.
  ReadyOrAbort(all_ran->get_future(), "the tasks queued before the release");
}

TEST(HostileThreads, SixteenSyncCallersOnOneWorkerWithThrowingTasks) {
  constexpr int kCallers = 16, kPerCaller = 300;
  tessel::GenericThreadFactory factory;
  auto worker = factory.CreateThread("hostile-sync", kWorker);
  long total = 0;  // touched only on the worker
  std::atomic<int> caught{0};
  auto callers = RunThreads(kCallers, [&](int caller) {
    for (int n = 0; n < kPerCaller; ++n) {
      long seen = -1;
      if (n % 50 == 49) {
        try {
          worker->DispatchSync([] { throw std::runtime_error("task failed"); });
        } catch (const std::runtime_error&) {
          caught.fetch_add(1);
        }
        continue;
      }
      worker->DispatchSync([&] { seen = ++total; });
      // The task's effect is visible when DispatchSync returns.
      if (seen <= 0) ADD_FAILURE() << "caller " << caller << " saw no effect";
    }
  });
  ReadyOrAbort(callers, "sync callers finishing");
  long final_total = 0;
  worker->DispatchSync([&] { final_total = total; });
  EXPECT_EQ(final_total, kCallers * (kPerCaller - kPerCaller / 50));
  EXPECT_EQ(caught.load(), kCallers * (kPerCaller / 50));
}

TEST(HostileThreads, WorkerReleasedByItsBlockedCallersStopsCleanly) {
  constexpr int kCallers = 8;
  tessel::GenericThreadFactory factory;
  std::atomic<int> done{0};
  std::shared_ptr<PlatformThread> owner = factory.CreateThread("hostile-stop", kWorker);
  std::promise<void> gate;
  std::shared_future<void> open = gate.get_future().share();
  // Park the worker so that every caller below is queued behind it; the
  // callers then hold the last references and the last of them to return
  // destroys the worker.
  owner->DispatchAsync([open] { open.wait(); });
  std::vector<std::shared_ptr<PlatformThread>> refs(kCallers, owner);
  auto callers = RunThreads(kCallers, [&](int i) {
    std::shared_ptr<PlatformThread> thread = std::move(refs[i]);
    thread->DispatchSync([&done] { done.fetch_add(1); });
    thread.reset();
  });
  owner.reset();
  gate.set_value();
  ReadyOrAbort(callers, "blocked callers being released");
  EXPECT_EQ(done.load(), kCallers);
}

}  // namespace
