// Where thread objects die: a UI loop gone before the main-thread handle, a
// worker released while its queued tasks call back into the releasing
// thread, the captures of a synchronous task, exceptions nobody waits for.
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "common/imp_win/generic_thread_factory.h"
#include "common/logger.h"
#include "platform/base/message_loop.h"
#include "watchdog.h"

namespace {

using namespace std::chrono_literals;
using tessel_gen::PlatformThread;
using threading_test::ReadyOrAbort;

constexpr tessel_gen::ThreadType kMain = tessel_gen::ThreadTypeMain;
constexpr tessel_gen::ThreadType kWorker = tessel_gen::ThreadTypeWorker;

TEST(ThreadLifetimes, MainThreadOutlivingItsUiLoopRefusesTasks) {
  tessel::GenericThreadFactory factory;
  std::shared_ptr<PlatformThread> main;
  {
    base::MessageLoop ui(base::MessageLoop::TYPE_UI, "short-lived");
    main = factory.CreateThread("main", kMain);
  }
  auto token = std::make_shared<int>(0);
  EXPECT_EQ(main->DispatchAsync([token] { ++*token; }), 0);
  auto sync = std::async(std::launch::async, [&] { main->DispatchSync([token] { ++*token; }); });
  ReadyOrAbort(sync, "a DispatchSync to a closed loop");
  EXPECT_EQ(*token, 0);
  EXPECT_EQ(token.use_count(), 1);
}

TEST(ThreadLifetimes, ReleasingAWorkerDoesNotWaitForItsCallsBack) {
  base::MessageLoop ui(base::MessageLoop::TYPE_UI, "ui");
  tessel::GenericThreadFactory factory;
  auto main = factory.CreateThread("main", kMain);
  auto worker = factory.CreateThread("calls-back", kWorker);
  bool called_back = false;
  // Queued on the worker; needs the UI thread, which is busy releasing.
  worker->DispatchAsync([main, &ui, &called_back] {
    main->DispatchSync([&] {
      called_back = true;
      ui.Quit();
    });
  });
  std::promise<void> released;
  auto watchdog = std::async(std::launch::async, [done = released.get_future()] {
    ReadyOrAbort(done, "the release of a worker whose task calls back");
  });
  worker.reset();
  released.set_value();
  ASSERT_TRUE(threading_test::RunGuarded(ui));
  EXPECT_TRUE(called_back);
}

// Blocks its destruction until the DispatchSync caller has returned, or a
// while passes; tells which came first.
struct Capture {
  Capture(std::shared_future<void> returned, std::promise<bool>* verdict)
      : caller_returned(std::move(returned)), destroyed_before_return(verdict) {}
  Capture(const Capture&) = delete;
  std::shared_future<void> caller_returned;
  std::promise<bool>* destroyed_before_return;
  ~Capture() {
    destroyed_before_return->set_value(caller_returned.wait_for(200ms) !=
                                       std::future_status::ready);
  }
};

TEST(ThreadLifetimes, DispatchSyncReturnsAfterTheTasksCapturesAreGone) {
  tessel::GenericThreadFactory factory;
  auto worker = factory.CreateThread("captures", kWorker);
  std::promise<void> returned;
  std::promise<bool> verdict;
  auto capture = std::make_shared<Capture>(returned.get_future().share(), &verdict);
  worker->DispatchSync([capture = std::move(capture)] {});
  returned.set_value();
  auto before = verdict.get_future();
  ReadyOrAbort(before, "the destruction of the captures");
  EXPECT_TRUE(before.get());
}

// Collects what reaches the log.
class Sink : public tessel::ILogger {
 public:
  void log(const std::string& message, int level) override {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!logged_) return;
    logged_->set_value(std::to_string(level) + " " + message);
    logged_.reset();
  }
  std::future<std::string> Next() {
    std::lock_guard<std::mutex> lock(mutex_);
    logged_.emplace();
    return logged_->get_future();
  }

 private:
  std::mutex mutex_;
  std::optional<std::promise<std::string>> logged_;
};

TEST(ThreadLifetimes, AsyncTaskExceptionReachesTheLogAndTheThreadGoesOn) {
  auto sink = std::make_shared<Sink>();
  tessel::Logger::sharedLogger()->set_inner_logger(sink);
  tessel::GenericThreadFactory factory;
  auto worker = factory.CreateThread("throws", kWorker);
  auto logged = sink->Next();
  worker->DispatchAsync([] { throw std::runtime_error("disk full"); });
  ReadyOrAbort(logged, "the report of the exception");
  const std::string line = logged.get();
  EXPECT_EQ(line.rfind("3 ", 0), 0u) << line;  // the error level
  EXPECT_NE(line.find("disk full"), std::string::npos) << line;
  bool ran = false;
  worker->DispatchSync([&] { ran = true; });
  EXPECT_TRUE(ran);
  tessel::Logger::sharedLogger()->set_inner_logger(nullptr);
}

}  // namespace
