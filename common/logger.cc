#include "common/logger.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

namespace tessel {

Logger::Logger() = default;

Logger::Logger(const Logger& other) {
  if (Sink sink = other.current_sink()) inner_logger.store(new Sink(std::move(sink)));
}

Logger& Logger::operator=(const Logger& other) {
  if (this != &other) set_inner_logger(other.current_sink());
  return *this;
}

Logger::~Logger() { delete inner_logger.load(); }

namespace {

// The shared logger is created under the mutex and published through the
// atomic pointer, which readers load without a lock. Neither the logger nor
// its pointer is ever destroyed.
std::mutex g_shared_logger_mutex;
std::atomic<const std::shared_ptr<Logger>*> g_published{nullptr};

}  // namespace

std::shared_ptr<Logger> Logger::sharedLogger() {
  if (const auto* published = g_published.load(std::memory_order_acquire)) {
    return *published;
  }
  std::lock_guard<std::mutex> lock(g_shared_logger_mutex);
  const auto* published = g_published.load(std::memory_order_relaxed);
  if (published == nullptr) {
    published = new std::shared_ptr<Logger>(std::make_shared<Logger>());
    g_published.store(published, std::memory_order_release);
  }
  return *published;
}

void Logger::set_inner_logger(const std::shared_ptr<ILogger>& logger) {
  const Sink* replacement = logger ? new Sink(logger) : nullptr;
  std::lock_guard<std::mutex> lock(writer_mutex_);
  const Sink* old = inner_logger.exchange(replacement);
  // Readers entering from now on see the next epoch, and the new box; wait
  // for those of the epoch left behind, which may still be copying `old`.
  const unsigned left = epoch_.fetch_add(1);
  while (readers_[left & 1].load() != 0) std::this_thread::yield();
  delete old;
}

Logger::Sink Logger::current_sink() const {
  for (;;) {
    const unsigned epoch = epoch_.load();
    std::atomic<unsigned>& slot = readers_[epoch & 1];
    slot.fetch_add(1);
    if (epoch_.load() != epoch) {  // a writer moved on: count in the new slot
      slot.fetch_sub(1);
      continue;
    }
    const Sink* box = inner_logger.load();
    Sink sink = box != nullptr ? *box : nullptr;
    slot.fetch_sub(1);
    return sink;
  }
}

void Logger::forward(const std::string& message, LogLevel level) {
  if (inner_logger.load(std::memory_order_acquire) == nullptr) return;
  if (Sink sink = current_sink()) sink->log(message, level);
}

void Logger::trace(const std::string& message) { forward(message, LogLevelTrace); }
void Logger::verbose(const std::string& message) { forward(message, LogLevelVerbose); }
void Logger::debug(const std::string& message) { forward(message, LogLevelDebug); }
void Logger::info(const std::string& message) { forward(message, LogLevelInfo); }
void Logger::warning(const std::string& message) { forward(message, LogLevelWarning); }
void Logger::error(const std::string& message) { forward(message, LogLevelError); }
void Logger::fatal(const std::string& message) { forward(message, LogLevelFatal); }

std::string GenerateLogPrefix(const std::string& moduleName,
                              const std::string& pointName,
                              const std::string& msg, const std::string& fp) {
  std::string prefix;
  prefix.reserve(moduleName.size() + pointName.size() + msg.size() + fp.size() + 40);
  prefix.append("[moduleName:").append(moduleName);
  prefix.append("][pointName:").append(pointName);
  prefix.append("][msg:").append(msg).append("]");
  if (!fp.empty()) prefix.append("[fp:").append(fp).append("]");
  return prefix;
}

}  // namespace tessel
