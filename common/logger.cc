#include "common/logger.h"

#include <atomic>
#include <mutex>

namespace tessel {

Logger::Logger() = default;
Logger::Logger(const Logger& other) = default;
Logger& Logger::operator=(const Logger& other) = default;
Logger::~Logger() = default;

namespace {

// The shared logger lives until process exit. Readers take the fast path
// through an atomic pointer published after creation; creation itself is
// serialised by the mutex.
std::shared_ptr<Logger> g_shared_logger;        // guarded by g_shared_logger_mutex
std::mutex g_shared_logger_mutex;
std::atomic<const std::shared_ptr<Logger>*> g_published{nullptr};

}  // namespace

std::shared_ptr<Logger> Logger::sharedLogger() {
  if (const auto* published = g_published.load(std::memory_order_acquire)) {
    return *published;
  }
  std::lock_guard<std::mutex> lock(g_shared_logger_mutex);
  if (!g_shared_logger) {
    g_shared_logger = std::make_shared<Logger>();
    g_published.store(&g_shared_logger, std::memory_order_release);
  }
  return g_shared_logger;
}

void Logger::set_inner_logger(const std::shared_ptr<ILogger>& logger) {
  inner_logger = logger;
}

void Logger::forward(const std::string& message, LogLevel level) {
  if (inner_logger) inner_logger->log(message, level);
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
