// The singleton's state is process-wide and a release is permanent, so every
// case runs in a child process of its own (EXPECT_EXIT) and cannot poison the
// others, however the runner schedules them.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "common/global_native_imp_holder.h"
#include "common/logger.h"
#include "common/singleton.h"

namespace {

using Holder = tessel::Singleton<tessel::GlobalNativeImpHolder>;

class QuietSink : public tessel::ILogger {
 public:
  void log(const std::string& message, int) override { last_ = message; }

 private:
  std::string last_;
};

// Runs `body` in a forked child; the child exits 0 only if no expectation
// failed.
template <typename Body>
void InChild(Body body) {
  EXPECT_EXIT(
      {
        body();
        std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(SingletonLifecycle, ReleaseBeforeCreationChangesNothing) {
  InChild([] {
    EXPECT_FALSE(Holder::sharedInstance(true));
    auto created = Holder::sharedInstance(false);
    EXPECT_TRUE(created);
    EXPECT_EQ(created.get(), Holder::sharedInstance(false).get());
  });
}

TEST(SingletonLifecycle, ReleaseAfterCreationEmptiesForEver) {
  InChild([] {
    std::weak_ptr<tessel::GlobalNativeImpHolder> watch = Holder::sharedInstance(false);
    auto detached = Holder::sharedInstance(true);
    ASSERT_TRUE(detached);
    EXPECT_EQ(detached.get(), watch.lock().get());
    EXPECT_EQ(detached.use_count(), 1);  // the singleton kept no reference
    EXPECT_FALSE(Holder::sharedInstance(false));
    EXPECT_FALSE(Holder::sharedInstance(true));
    detached.reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_FALSE(Holder::sharedInstance(false));
  });
}

TEST(SingletonLifecycle, ConcurrentFirstCallsCreateExactlyOneHolder) {
  InChild([] {
    constexpr int kThreads = 8;
    std::vector<std::shared_ptr<tessel::GlobalNativeImpHolder>> seen(kThreads);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&seen, i] { seen[i] = Holder::sharedInstance(false); });
    }
    for (auto& t : threads) t.join();
    for (const auto& holder : seen) {
      ASSERT_TRUE(holder);
      EXPECT_EQ(holder.get(), seen[0].get());
    }
  });
}

// Objects threads may reach stay valid while the process exits: a thread
// still logging and reading the holder when main() ends must not touch a
// destroyed logger or holder (the address sanitizer reports it if it does).
TEST(ProcessExit, ThreadsStillRunningMayLogAndReachTheHolder) {
  InChild([] {
    tessel::Logger::sharedLogger()->set_inner_logger(std::make_shared<QuietSink>());
    static std::atomic<int> rounds{0};
    std::thread([] {
      for (;;) {
        tessel::Logger::sharedLogger()->info("still running");
        if (auto holder = Holder::sharedInstance(false)) holder->timer.reset();
        ++rounds;
      }
    }).detach();
    while (rounds.load() < 100) std::this_thread::yield();
    std::exit(0);  // runs the static destructors while the thread goes on
  });
}

}  // namespace
