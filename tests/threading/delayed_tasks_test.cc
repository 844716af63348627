// Delayed tasks of the base loop and the closing of its posting handle.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
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
  constexpr int kTasks = 6;
  const std::chrono::milliseconds delays[kTasks] = {40ms, 10ms, 25ms, 10ms, 0ms, -5ms};
  // Each task's due time lies between these bounds: a loaded machine may
  // stall the posting thread between two posts, which moves due times apart.
  Clock::time_point earliest[kTasks], latest[kTasks];
  std::vector<int> order;
  for (int id = 0; id < kTasks; ++id) {
    const auto delay = std::max(delays[id], 0ms);
    earliest[id] = Clock::now() + delay;
    loop.PostDelayedTask(FROM_HERE, [&, id] {
      EXPECT_GE(Clock::now(), earliest[id]) << "task " << id << " ran early";
      order.push_back(id);
    }, delays[id]);
    latest[id] = Clock::now() + delay;
  }
  loop.PostDelayedTask(FROM_HERE, [&] { loop.Quit(); }, 41ms);
  ASSERT_TRUE(RunGuarded(loop));
  ASSERT_EQ(order.size(), static_cast<std::size_t>(kTasks));
  int rank[kTasks];
  for (int at = 0; at < kTasks; ++at) rank[order[at]] = at;
  for (int i = 0; i < kTasks; ++i) {
    for (int j = i + 1; j < kTasks; ++j) {
      const bool same_delay = std::max(delays[i], 0ms) == std::max(delays[j], 0ms);
      if (same_delay || latest[i] < earliest[j]) {
        EXPECT_LT(rank[i], rank[j]) << i << " before " << j;
      }
      if (latest[j] < earliest[i]) {
        EXPECT_LT(rank[j], rank[i]) << j << " before " << i;
      }
    }
  }
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
