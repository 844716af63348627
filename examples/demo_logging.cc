// Logging: the host installs a sink that prints to stdout, then logs through
// the shared logger with a structured prefix.
#include <iostream>
#include <mutex>

#include "demo_section.h"
#include "tessel_depends.h"

namespace {

class StdoutSink : public tessel::ILogger {
 public:
  void log(const std::string& message, int level) override {
    static const char* const kNames[] = {"INFO", "WARN", "DEBUG", "ERROR",
                                         "FATAL", "TRACE", "VERBOSE"};
    std::lock_guard<std::mutex> lock(mutex_);
    std::cout << "  [" << (level >= 0 && level < 7 ? kNames[level] : "?") << "] "
              << message << "\n";
  }

 private:
  std::mutex mutex_;  // keeps lines from different threads whole
};

void Run() {
  auto logger = tessel::Logger::sharedLogger();
  logger->info("dropped: no sink installed yet");
  logger->set_inner_logger(std::make_shared<StdoutSink>());
  logger->info(tessel::GenerateLogPrefix("demo", "start", "sink installed", ""));
  logger->warning(tessel::GenerateLogPrefix("mail", "sync", "timeout", "3f9a"));
  logger->debug("debug message");
  logger->error("error message");
  logger->verbose("verbose message");
}

const bool kRegistered = demo::Register(10, "Logging", Run);

}  // namespace
