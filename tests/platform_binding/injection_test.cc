#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "common/global_native_imp_holder.h"
#include "common/imp_win/generic_file_manager.h"
#include "common/imp_win/generic_timer.h"
#include "common/singleton.h"
#include "common/util_entrance.h"

namespace {

using ::testing::InSequence;
using ::testing::Return;
using ::testing::Throw;

class MockThread : public tessel_gen::PlatformThread {
 public:
  MOCK_METHOD(void, DispatchSync, (std::function<void()>), (override));
  MOCK_METHOD(int, DispatchAsync, (std::function<void()>), (override));
  MOCK_METHOD(void, CancelTask, (int), (override));
  MOCK_METHOD(tessel_gen::ThreadType, type, (), (override));
  MOCK_METHOD(std::string, name, (), (override));
  MOCK_METHOD(bool, IsCurrentThread, (), (override));
  MOCK_METHOD(void, set_value, (const std::string&, const std::string&), (override));
  MOCK_METHOD(std::string, value_for_key, (const std::string&), (override));
};

class MockFactory : public tessel_gen::PlatformThreadFactory {
 public:
  MOCK_METHOD(std::shared_ptr<tessel_gen::PlatformThread>, CreateThread,
              (const std::string&, tessel_gen::ThreadType), (override));
  MOCK_METHOD(bool, IsMainThread, (), (override));
  MOCK_METHOD(std::shared_ptr<tessel_gen::PlatformThread>, current_thread, (), (override));
};

// Stand-ins whose identity is all that matters here.
using NullTimer = tessel::GenericTImer;
using NullFileManager = tessel::GenericFileManager;

std::shared_ptr<tessel::GlobalNativeImpHolder> Holder() {
  return tessel::Singleton<tessel::GlobalNativeImpHolder>::sharedInstance(false);
}

// The holder is process-wide; each case starts from empty fields.
class Injection : public ::testing::Test {
 protected:
  void SetUp() override { *Holder() = tessel::GlobalNativeImpHolder(); }
  void TearDown() override { *Holder() = tessel::GlobalNativeImpHolder(); }
};

TEST_F(Injection, StoresSharedObjectsAndAsksForMainThread) {
  auto factory = std::make_shared<MockFactory>();
  auto main_thread = std::make_shared<MockThread>();
  auto files = std::make_shared<NullFileManager>();
  auto timer = std::make_shared<NullTimer>();
  EXPECT_CALL(*factory, CreateThread("main", tessel_gen::ThreadType(0)))
      .WillOnce([&](const std::string&, tessel_gen::ThreadType) {
        // The first three fields are already in place when the factory runs.
        auto holder = Holder();
        EXPECT_EQ(holder->thread_factory.get(), factory.get());
        EXPECT_EQ(holder->timer.get(), timer.get());
        EXPECT_EQ(holder->file_manager.get(), files.get());
        EXPECT_FALSE(holder->main_thread);
        return main_thread;
      });

  long factory_refs = factory.use_count();
  tessel::UtilEntrance::InjectPlatformImp(factory, files, timer);

  auto holder = Holder();
  EXPECT_EQ(holder->thread_factory.get(), factory.get());
  EXPECT_EQ(holder->timer.get(), timer.get());
  EXPECT_EQ(holder->file_manager.get(), files.get());
  EXPECT_EQ(holder->main_thread.get(), main_thread.get());
  EXPECT_EQ(factory.use_count(), factory_refs + 1);  // shared, caller keeps its own

  tessel::GlobalNativeImpHolder copy = *holder;
  EXPECT_EQ(copy.main_thread.get(), main_thread.get());
  EXPECT_EQ(copy.thread_factory.get(), factory.get());
}

TEST_F(Injection, SecondInjectionReplacesAndReleasesTheFirst) {
  auto first = std::make_shared<MockFactory>();
  auto second = std::make_shared<MockFactory>();
  std::weak_ptr<MockThread> first_main;
  {
    auto t = std::make_shared<MockThread>();
    first_main = t;
    EXPECT_CALL(*first, CreateThread("main", tessel_gen::ThreadType(0))).WillOnce(Return(t));
  }
  EXPECT_CALL(*second, CreateThread("main", tessel_gen::ThreadType(0)))
      .WillOnce(Return(std::make_shared<MockThread>()));
  tessel::UtilEntrance::InjectPlatformImp(first, nullptr, nullptr);
  EXPECT_FALSE(first_main.expired());
  tessel::UtilEntrance::InjectPlatformImp(second, nullptr, nullptr);
  EXPECT_TRUE(first_main.expired());
  EXPECT_EQ(Holder()->thread_factory.get(), second.get());
  EXPECT_FALSE(Holder()->timer);
  EXPECT_FALSE(Holder()->file_manager);
}

TEST_F(Injection, EmptyFactoryStoresTheRestAndLeavesMainThreadEmpty) {
  auto timer = std::make_shared<NullTimer>();
  auto files = std::make_shared<NullFileManager>();
  Holder()->main_thread = std::make_shared<MockThread>();
  tessel::UtilEntrance::InjectPlatformImp(nullptr, files, timer);
  EXPECT_FALSE(Holder()->thread_factory);
  EXPECT_EQ(Holder()->timer.get(), timer.get());
  EXPECT_EQ(Holder()->file_manager.get(), files.get());
  EXPECT_FALSE(Holder()->main_thread);
}

TEST_F(Injection, FactoryExceptionPropagatesAfterFirstThreeSteps) {
  auto factory = std::make_shared<MockFactory>();
  auto timer = std::make_shared<NullTimer>();
  auto previous_main = std::make_shared<MockThread>();
  Holder()->main_thread = previous_main;
  EXPECT_CALL(*factory, CreateThread("main", tessel_gen::ThreadType(0)))
      .WillOnce(Throw(std::runtime_error("no loop")));
  EXPECT_THROW(tessel::UtilEntrance::InjectPlatformImp(factory, nullptr, timer),
               std::runtime_error);
  EXPECT_EQ(Holder()->thread_factory.get(), factory.get());
  EXPECT_EQ(Holder()->timer.get(), timer.get());
  EXPECT_EQ(Holder()->main_thread.get(), previous_main.get());
}

}  // namespace
