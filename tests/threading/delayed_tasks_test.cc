// Delayed tasks of the base loop and the closing of its posting handle.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <vector>

#include "platform/base/message_loop.h"
#include "watchdog.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using threading_test::RunGuarded;

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
