// GenericThread and GenericThreadFactory on real loops: the test's main
// thread runs the host's user-interface loop, workers run their own.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common/global_native_imp_holder.h"
#include "common/imp_win/generic_thread.h"
#include "common/imp_win/generic_thread_factory.h"
#include "common/singleton.h"
#include "common/util_entrance.h"
#include "platform/base/message_loop.h"
#include "watchdog.h"

namespace {

using tessel_gen::PlatformThread;
using threading_test::ReadyOrAbort;
using threading_test::Within;

constexpr tessel_gen::ThreadType kMain = tessel_gen::ThreadTypeMain;
constexpr tessel_gen::ThreadType kWorker = tessel_gen::ThreadTypeWorker;

// What a task saw of its surroundings.
struct Seen {
  std::thread::id thread;
  bool is_current = false;
  bool is_main = false;
  std::shared_ptr<PlatformThread> current;
};

class GenericThreads : public ::testing::Test {
 protected:
  // What the calling task sees, when it runs on `thread`.
  Seen SeenHere(PlatformThread& thread) {
    return {std::this_thread::get_id(), thread.IsCurrentThread(), factory_.IsMainThread(),
            factory_.current_thread()};
  }
  Seen LookFrom(PlatformThread& thread) {
    Seen seen;
    thread.DispatchSync([&] { seen = SeenHere(thread); });
    return seen;
  }

  bool RunUiLoop() { return threading_test::RunGuarded(ui_); }

  base::MessageLoop ui_{base::MessageLoop::TYPE_UI, "ui-main"};
  tessel::GenericThreadFactory factory_;
};

TEST_F(GenericThreads, MainThreadPostsToTheUserInterfaceLoop) {
  auto main = factory_.CreateThread("main", kMain);
  EXPECT_EQ(main->type(), kMain);
  EXPECT_EQ(main->name(), "");
  EXPECT_TRUE(factory_.IsMainThread());
  EXPECT_EQ(factory_.current_thread(), main);

  Seen seen;
  EXPECT_EQ(main->DispatchAsync([&] { seen = SeenHere(*main); }), 0);
  EXPECT_EQ(seen.thread, std::thread::id());  // waits for the loop to run
  ui_.RunUntilIdle();
  EXPECT_EQ(seen.thread, std::this_thread::get_id());
  EXPECT_TRUE(seen.is_current && seen.is_main);
  EXPECT_EQ(seen.current, main);
}

TEST_F(GenericThreads, WorkerRunsTasksOnAThreadOfItsOwn) {
  auto db = factory_.CreateThread("db", kWorker);
  EXPECT_EQ(db->type(), kWorker);
  EXPECT_EQ(db->name(), "db");
  EXPECT_FALSE(db->IsCurrentThread());
  EXPECT_EQ(static_cast<tessel::GenericThread&>(*db).thread_key(), "db");

  const Seen seen = LookFrom(*db);
  EXPECT_NE(seen.thread, std::this_thread::get_id());
  EXPECT_TRUE(seen.is_current && !seen.is_main);
  EXPECT_EQ(seen.current, db);
}

TEST_F(GenericThreads, UserInterfaceLoopRunsTasksPostedFromWorkers) {
  auto main = factory_.CreateThread("main", kMain);
  auto db = factory_.CreateThread("db", kWorker);
  std::thread::id ran_on;
  db->DispatchAsync([&] {
    main->DispatchAsync([&] {
      ran_on = std::this_thread::get_id();
      ui_.Quit();
    });
  });
  ASSERT_TRUE(RunUiLoop());
  EXPECT_EQ(ran_on, std::this_thread::get_id());
}

TEST_F(GenericThreads, TasksOfEachProducerRunInPostingOrder) {
  constexpr int kProducers = 8;
  constexpr int kPerProducer = 2000;
  auto worker = factory_.CreateThread("fifo", kWorker);
  std::vector<std::pair<int, int>> ran;  // (producer, sequence); touched on the worker only
  std::vector<std::future<bool>> producers;
  for (int p = 0; p < kProducers; ++p) {
    producers.push_back(std::async(std::launch::async, [&, p] {
      bool all_zero = true;
      for (int i = 0; i < kPerProducer; ++i) {
        all_zero &= worker->DispatchAsync([&ran, p, i] { ran.emplace_back(p, i); }) == 0;
      }
      return all_zero;
    }));
  }
  for (auto& producer : producers) {
    ASSERT_TRUE(Within(producer));
    EXPECT_TRUE(producer.get());
  }
  std::vector<int> next(kProducers, 0);
  bool in_order = true;
  worker->DispatchSync([&] {
    for (const auto& [producer, sequence] : ran) in_order &= sequence == next[producer]++;
  });
  EXPECT_TRUE(in_order);
  EXPECT_EQ(next, std::vector<int>(kProducers, kPerProducer));
}

TEST_F(GenericThreads, DispatchSyncOnItsOwnThreadRunsAtOnce) {
  auto worker = factory_.CreateThread("self", kWorker);
  // Shared with the task, which may still be inside set_value() when the
  // test returns.
  auto order = std::make_shared<std::promise<std::vector<int>>>();
  worker->DispatchAsync([&worker, order] {
    std::vector<int> steps{1};
    worker->DispatchSync([&] { steps.push_back(2); });
    steps.push_back(3);
    order->set_value(steps);
  });
  auto result = order->get_future();
  ReadyOrAbort(result, "a same-thread DispatchSync");
  EXPECT_EQ(result.get(), (std::vector<int>{1, 2, 3}));

  auto main = factory_.CreateThread("main", kMain);  // and on the UI thread, not pumping
  bool ran = false;
  main->DispatchSync([&] { ran = true; });
  EXPECT_TRUE(ran);
}

TEST_F(GenericThreads, StoreIsWrittenOnlyOnItsOwnThread) {
  auto worker = factory_.CreateThread("store", kWorker);
  std::vector<std::string> read;  // "k" before, after each write; an unknown key
  const auto read_k = [&] { read.push_back(worker->value_for_key("k")); };
  worker->set_value("from-outside", "k");
  worker->DispatchSync([&] {
    read_k();
    worker->set_value("v", "k");
    read_k();
    worker->set_value("w", "k");
    read_k();
    read.push_back(worker->value_for_key("never-set"));
  });
  worker->set_value("from-outside", "k");
  worker->DispatchSync(read_k);
  EXPECT_EQ(read, (std::vector<std::string>{"", "v", "w", "", "w"}));
}

TEST_F(GenericThreads, ExceptionsGoBackToSyncCallersAndNeverEndTheThread) {
  auto worker = factory_.CreateThread("throws", kWorker);
  EXPECT_EQ(worker->DispatchAsync([] { throw std::runtime_error("dropped"); }), 0);
  try {
    worker->DispatchSync([] { throw std::runtime_error("carried back"); });
    ADD_FAILURE() << "DispatchSync swallowed the task's exception";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "carried back");
  }
  auto nested = std::make_shared<std::promise<bool>>();
  worker->DispatchAsync([&worker, nested] {
    try {
      worker->DispatchSync([] { throw std::logic_error("same thread"); });
      nested->set_value(false);
    } catch (const std::logic_error&) {
      nested->set_value(true);
    }
  });
  auto caught = nested->get_future();
  ReadyOrAbort(caught, "the worker after exceptions");
  EXPECT_TRUE(caught.get());
  // Empty callables are refused, and the worker still serves.
  EXPECT_EQ(worker->DispatchAsync(nullptr), 0);
  worker->DispatchSync(nullptr);
  EXPECT_TRUE(LookFrom(*worker).is_current);
}

TEST_F(GenericThreads, ReleasedFromItsOwnTaskEndsWithoutDeadlock) {
  auto worker = factory_.CreateThread("last-owner", kWorker);
  std::weak_ptr<PlatformThread> watch = worker;
  auto released = std::make_shared<std::promise<void>>();
  worker->DispatchAsync([owner = std::move(worker), released]() mutable {
    owner.reset();
    released->set_value();
  });
  ReadyOrAbort(released->get_future(), "a worker releasing itself");
  EXPECT_TRUE(watch.expired());
}

TEST_F(GenericThreads, CurrentThreadNeedsALiveRegisteredLoop) {
  auto outside = std::async(std::launch::async,
                            [&] { return factory_.current_thread() || factory_.IsMainThread(); });
  ASSERT_TRUE(Within(outside));
  EXPECT_FALSE(outside.get());

  auto older = factory_.CreateThread("dup", kWorker);
  auto newer = factory_.CreateThread("dup", kWorker);
  EXPECT_EQ(LookFrom(*newer).current, newer);
  EXPECT_EQ(LookFrom(*older).current, nullptr);  // its entry was taken over

  tessel::GenericThreadFactory copy(factory_);
  std::shared_ptr<PlatformThread> from_copy;
  newer->DispatchSync([&] { from_copy = copy.current_thread(); });
  EXPECT_EQ(from_copy, newer);

  std::weak_ptr<PlatformThread> watch = newer;
  from_copy.reset();
  newer.reset();
  EXPECT_TRUE(watch.expired());  // neither registry keeps it alive
  EXPECT_EQ(LookFrom(*older).current, older);  // the entry again
  auto again = factory_.CreateThread("dup", kWorker);
  EXPECT_EQ(LookFrom(*again).current, again);
}

TEST(GenericThreadWithoutUiLoop, MainThreadDropsEveryTask) {
  ASSERT_EQ(base::GetUIMessageLoop(), nullptr);
  tessel::GenericThreadFactory factory;
  auto main = factory.CreateThread("main", kMain);
  bool ran = false;
  EXPECT_EQ(main->DispatchAsync([&] { ran = true; }), 0);
  auto sync = std::async(std::launch::async, [&] { main->DispatchSync([&] { ran = true; }); });
  ASSERT_TRUE(Within(sync));
  base::MessageLoop late_ui(base::MessageLoop::TYPE_UI, "late");  // not picked up
  late_ui.RunUntilIdle();
  EXPECT_FALSE(ran);
  EXPECT_EQ(factory.current_thread(), nullptr);
}

TEST(GenericThreadInjection, MainThreadOfTheHolderIsTheUiThread) {
  base::MessageLoop ui(base::MessageLoop::TYPE_UI, "ui-main");
  auto factory = std::make_shared<tessel::GenericThreadFactory>();
  tessel::UtilEntrance::InjectPlatformImp(factory, nullptr, nullptr);
  auto holder = tessel::Singleton<tessel::GlobalNativeImpHolder>::sharedInstance(false);
  ASSERT_TRUE(holder->main_thread);
  EXPECT_EQ(holder->main_thread->type(), kMain);
  EXPECT_EQ(factory->current_thread(), holder->main_thread);
  *holder = tessel::GlobalNativeImpHolder();
}

}  // namespace
