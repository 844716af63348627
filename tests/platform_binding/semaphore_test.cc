#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include "common/semaphore.h"

namespace {

using namespace std::chrono_literals;

// Long enough that a wrongly blocked waiter fails the test rather than hanging
// it, and a wrongly passing one is seen.
constexpr auto kWatchdog = 10s;
constexpr auto kSettle = 200ms;

TEST(Semaphore, NotifyBeforeWaitIsNotLost) {
  tessel::Semaphore sem;
  sem.notify();
  auto done = std::async(std::launch::async, [&] { sem.wait(); });
  EXPECT_EQ(done.wait_for(kWatchdog), std::future_status::ready);
}

TEST(Semaphore, WaitBlocksUntilAnotherThreadNotifies) {
  tessel::Semaphore sem;
  std::atomic<bool> notified{false};
  auto waiter = std::async(std::launch::async, [&] {
    sem.wait();
    return notified.load();
  });
  EXPECT_EQ(waiter.wait_for(kSettle), std::future_status::timeout);
  notified = true;
  sem.notify();
  ASSERT_EQ(waiter.wait_for(kWatchdog), std::future_status::ready);
  EXPECT_TRUE(waiter.get());
}

TEST(Semaphore, KSignalsLetExactlyKWaitersPass) {
  tessel::Semaphore sem;
  sem.notify();
  sem.notify();
  std::atomic<int> passed{0};
  std::vector<std::future<void>> waiters;
  for (int i = 0; i < 3; ++i) {
    waiters.push_back(std::async(std::launch::async, [&] {
      sem.wait();
      ++passed;
    }));
  }
  auto deadline = std::chrono::steady_clock::now() + kWatchdog;
  while (passed < 2 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(1ms);
  }
  EXPECT_EQ(passed.load(), 2);
  std::this_thread::sleep_for(kSettle);
  EXPECT_EQ(passed.load(), 2);  // the third still blocks
  sem.notify();
  for (auto& w : waiters) ASSERT_EQ(w.wait_for(kWatchdog), std::future_status::ready);
  EXPECT_EQ(passed.load(), 3);
}

TEST(Semaphore, CountsManySignalsAcrossThreads) {
  constexpr int kPerThread = 20000;
  tessel::Semaphore sem;
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
  // Every signal was consumed exactly once: a further wait must block.
  auto extra = std::async(std::launch::async, [&] { sem.wait(); });
  EXPECT_EQ(extra.wait_for(kSettle), std::future_status::timeout);
  sem.notify();
  EXPECT_EQ(extra.wait_for(kWatchdog), std::future_status::ready);
}

}  // namespace
