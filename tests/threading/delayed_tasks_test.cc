// Delayed tasks of the base loop and the closing of its posting handle.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/base/message_loop.h"
#include "platform/base/thread.h"
#include "watchdog.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using threading_test::kWatchdog;
using threading_test::ReadyOrAbort;

// Runs `loop` on the calling thread until a task quits it; false when the
// watchdog had to quit it instead.
bool RunGuarded(base::MessageLoop& loop) {
  std::promise<void> returned;
  auto watchdog = std::async(std::launch::async, [&loop, done = returned.get_future()] {
    if (threading_test::Within(done)) return false;
    loop.Quit();
    return true;
  });
  loop.Run();
  returned.set_value();
  return !watchdog.get();
}

TEST(DelayedTasks, RunByDeadlineThenPostingOrderAndNeverEarly) {
  base::MessageLoop loop;
  struct Run {
    int id;
    Clock::duration after;
  };
  std::vector<Run> ran;
  const Clock::time_point start = Clock::now();
  const auto record = [&](int id) { ran.push_back({id, Clock::now() - start}); };
  const std::chrono::milliseconds delays[] = {40ms, 10ms, 25ms, 10ms, 0ms, -5ms};
  for (int id = 0; id < 6; ++id) {
    loop.PostDelayedTask(FROM_HERE, [&, id] { record(id); }, delays[id]);
  }
  loop.PostDelayedTask(FROM_HERE, [&] { loop.Quit(); }, 41ms);
  ASSERT_TRUE(RunGuarded(loop));
  std::vector<int> order;
  for (const Run& run : ran) {
    order.push_back(run.id);
    EXPECT_GE(run.after, delays[run.id]) << "task " << run.id << " ran early";
  }
  EXPECT_EQ(order, (std::vector<int>{4, 5, 1, 3, 2, 0}));
}

TEST(DelayedTasks, PostsFailOnceTheLoopHasClosed) {
  std::shared_ptr<base::TaskRunner> runner;
  auto token = std::make_shared<int>(0);
  {
    base::MessageLoop loop;
    runner = loop.task_runner();
    EXPECT_TRUE(runner->RunsTasksOnCurrentThread());
    // Posted during the final drain: still runs.
    EXPECT_TRUE(runner->PostTask(FROM_HERE, [&, token] {
      EXPECT_TRUE(runner->PostTask(FROM_HERE, [token] { ++*token; }));
    }));
  }
  EXPECT_EQ(*token, 1);
  EXPECT_FALSE(runner->PostTask(FROM_HERE, [token] { ++*token; }));
  EXPECT_FALSE(runner->PostDelayedTask(FROM_HERE, [token] { ++*token; }, 1ms));
  EXPECT_EQ(token.use_count(), 1);  // refused tasks are destroyed at once
}

}  // namespace
