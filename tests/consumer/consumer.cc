// Uses the installed library the way a host does: through the umbrella header
// and the exported interface only. One block per family; each block makes a
// call whose result is known independently, and main() reports the count of
// checks and exits non-zero if any failed.
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include "tessel_depends.h"

namespace {

int checks = 0;
int failures = 0;

void Check(bool ok, const char* what) {
  ++checks;
  if (!ok) {
    ++failures;
    std::printf("consumer: FAILED %s\n", what);
  }
}

// Keeps what the logger forwards.
class Sink : public tessel::ILogger {
 public:
  void log(const std::string& message, int level) override {
    last = message;
    last_level = level;
  }
  std::string last;
  int last_level = -1;
};

}  // namespace

int main() {
  // Logging
  {
    auto sink = std::make_shared<Sink>();
    tessel::Logger::sharedLogger()->set_inner_logger(sink);
    tessel::Logger::sharedLogger()->error("disk full");
    Check(sink->last == "disk full" && sink->last_level == 3, "Logger forwards to the sink");
    Check(tessel::GenerateLogPrefix("m", "p", "x", "") == "[moduleName:m][pointName:p][msg:x]",
          "GenerateLogPrefix");
  }

  // Semaphore
  {
    tessel::Semaphore semaphore;
    bool signalled = false;
    std::thread signaller([&] {
      signalled = true;
      semaphore.notify();
    });
    semaphore.wait();
    Check(signalled, "Semaphore wait returns after notify");
    signaller.join();
  }

  // Holder and injection
  {
    using Holder = tessel::Singleton<tessel::GlobalNativeImpHolder>;
    auto holder = Holder::sharedInstance(false);
    Check(holder && holder.get() == Holder::sharedInstance(false).get(),
          "Singleton<GlobalNativeImpHolder> hands out one holder");
    tessel::UtilEntrance::InjectPlatformImp(nullptr, nullptr, nullptr);
    Check(holder && !holder->thread_factory && !holder->main_thread,
          "InjectPlatformImp without implementations leaves the holder empty");
  }

  std::printf("consumer %s: %d checks, %d failed\n", TESSEL_DEPENDS_VERSION_STRING, checks,
              failures);
  return failures == 0 ? 0 : 1;
}
