// The counting semaphore. Nothing here sleeps: a wait that wrongly blocks
// is caught by the watchdog bound, one that wrongly passes by what it saw.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include "common/semaphore.h"

namespace {

using namespace std::chrono_literals;

constexpr auto kWatchdog = 20s;

TEST(Semaphore, NotifyBeforeWaitIsNotLost) {
  tessel::Semaphore sem;
  sem.notify();
  sem.notify();
  auto done = std::async(std::launch::async, [&] {
    sem.wait();
    sem.wait();
  });
  EXPECT_EQ(done.wait_for(kWatchdog), std::future_status::ready);
}

// Two signals let two of three waiters pass; the third passes only after the
// third signal, which it must see given.
TEST(Semaphore, KSignalsLetExactlyKWaitersPass) {
  tessel::Semaphore sem;
  tessel::Semaphore passed;
  std::atomic<int> signals{2};
  sem.notify();
  sem.notify();
  std::vector<std::future<int>> waiters;
  for (int i = 0; i < 3; ++i) {
    waiters.push_back(std::async(std::launch::async, [&] {
      sem.wait();
      const int seen = signals.load();
      passed.notify();
      return seen;
    }));
  }
  auto two_passed = std::async(std::launch::async, [&] {
    passed.wait();
    passed.wait();
  });
  ASSERT_EQ(two_passed.wait_for(kWatchdog), std::future_status::ready);
  signals = 3;
  sem.notify();
  int saw_third_signal = 0;
  for (auto& waiter : waiters) {
    ASSERT_EQ(waiter.wait_for(kWatchdog), std::future_status::ready);
    saw_third_signal += waiter.get() == 3;
  }
  EXPECT_GE(saw_third_signal, 1);  // the last to pass waited for the third
}

TEST(Semaphore, CountsManySignalsAcrossThreads) {
  constexpr int kPerThread = 20000;
  tessel::Semaphore sem;
  auto all = std::async(std::launch::async, [&] {
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
      threads.emplace_back([&] {
        for (int n = 0; n < kPerThread; ++n) sem.notify();
      });
      threads.emplace_back([&] {
        for (int n = 0; n < kPerThread; ++n) sem.wait();
      });
    }
    for (auto& t : threads) t.join();
  });
  // A lost signal leaves a waiter blocked past the bound.
  EXPECT_EQ(all.wait_for(kWatchdog), std::future_status::ready);
  if (all.wait_for(0s) != std::future_status::ready) std::abort();
}

}  // namespace
