#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "common/logger.h"

namespace {

using ::testing::StrictMock;

class MockSink : public tessel::ILogger {
 public:
  MOCK_METHOD(void, log, (const std::string&, int), (override));
};

// Each level's method and the number the sink receives for it.
const std::pair<void (tessel::Logger::*)(const std::string&), int> kLevels[] = {
    {&tessel::Logger::info, 0},  {&tessel::Logger::warning, 1}, {&tessel::Logger::debug, 2},
    {&tessel::Logger::error, 3}, {&tessel::Logger::fatal, 4},   {&tessel::Logger::trace, 5},
    {&tessel::Logger::verbose, 6},
};

TEST(Logger, EachLevelForwardsItsNumberAndTheExactBytes) {
  auto sink = std::make_shared<StrictMock<MockSink>>();
  tessel::Logger logger;
  logger.set_inner_logger(sink);
  const std::string raw("x\0y\n\xff", 5);
  for (const auto& [method, level] : kLevels) {
    EXPECT_CALL(*sink, log(raw, level)).Times(1);
    (logger.*method)(raw);
    ::testing::Mock::VerifyAndClearExpectations(sink.get());
  }
}

TEST(Logger, EmptySinkSilencesAndReleasesThePreviousOne) {
  auto sink = std::make_shared<StrictMock<MockSink>>();
  tessel::Logger logger;
  logger.set_inner_logger(sink);
  EXPECT_EQ(sink.use_count(), 2);
  logger.set_inner_logger(nullptr);
  EXPECT_EQ(sink.use_count(), 1);
  // The strict mock fails the test if any call still reaches it; fatal does
  // not end the process either.
  for (const auto& level : kLevels) (logger.*level.first)("a");
}

TEST(Logger, CopiesShareTheSink) {
  auto sink = std::make_shared<StrictMock<MockSink>>();
  tessel::Logger original;
  original.set_inner_logger(sink);
  tessel::Logger copy(original);
  tessel::Logger assigned;
  assigned = original;
  EXPECT_CALL(*sink, log("from copy", 0));
  EXPECT_CALL(*sink, log("from assigned", 3));
  copy.info("from copy");
  assigned.error("from assigned");
}

TEST(Logger, SinkExceptionsReachTheCaller) {
  auto sink = std::make_shared<MockSink>();
  EXPECT_CALL(*sink, log).WillOnce([](const std::string&, int) {
    throw std::runtime_error("disk full");
  });
  tessel::Logger logger;
  logger.set_inner_logger(sink);
  EXPECT_THROW(logger.info("m"), std::runtime_error);
}

// A sink whose log() reads its own state, so a call into a destroyed sink
// shows up under the sanitizers.
class CheckedSink : public tessel::ILogger {
 public:
  ~CheckedSink() override { alive_ = 0; }
  void log(const std::string& message, int) override {
    if (alive_ != 0x5AFE) ADD_FAILURE() << "call into a destroyed sink: " << message;
  }

 private:
  volatile int alive_ = 0x5AFE;
};

TEST(Logger, SinkSwappedWhileOthersLogLivesUntilTheirCallsReturn) {
  tessel::Logger logger;
  std::atomic<bool> stop{false};
  std::vector<std::thread> loggers;
  for (int i = 0; i < 3; ++i) {
    loggers.emplace_back([&] {
      while (!stop.load()) logger.info("busy");
    });
  }
  for (int swap = 0; swap < 3000; ++swap) {
    logger.set_inner_logger(swap % 3 == 2 ? nullptr : std::make_shared<CheckedSink>());
  }
  stop = true;
  for (auto& thread : loggers) thread.join();
}

TEST(GenerateLogPrefix, BuildsTheBracketedParts) {
  EXPECT_EQ(tessel::GenerateLogPrefix("mail", "sync", "timeout", ""),
            "[moduleName:mail][pointName:sync][msg:timeout]");
  EXPECT_EQ(tessel::GenerateLogPrefix("mail", "sync", "timeout", "3f9a"),
            "[moduleName:mail][pointName:sync][msg:timeout][fp:3f9a]");
  EXPECT_EQ(tessel::GenerateLogPrefix("", "", "", ""), "[moduleName:][pointName:][msg:]");
  EXPECT_EQ(tessel::GenerateLogPrefix("a:b", " p ", "a]b", "[x]"),
            "[moduleName:a:b][pointName: p ][msg:a]b][fp:[x]]");
}

}  // namespace
