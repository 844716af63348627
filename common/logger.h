// Logger is the front through which the SDK core and the host log. It
// forwards each message unchanged, with its level number, to a sink
// (ILogger) that the host installs; without a sink messages are dropped. It
// never logs on its own behalf. GenerateLogPrefix builds the bracketed prefix
// of structured log lines.
#ifndef TESSEL_COMMON_LOGGER_H_
#define TESSEL_COMMON_LOGGER_H_

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "common/tessel_export.h"

namespace tessel {

// The sink a host implements. log() may be called from any thread at once.
class TESSEL_API ILogger {
 public:
  virtual ~ILogger() = default;
  virtual void log(const std::string& message, int level) = 0;
};

// The level numbers passed to ILogger::log, one per Logger method. They are
// not ordered by severity.
enum LogLevel : int {
  LogLevelInfo = 0,
  LogLevelWarning = 1,
  LogLevelDebug = 2,
  LogLevelError = 3,
  LogLevelFatal = 4,
  LogLevelTrace = 5,
  LogLevelVerbose = 6,
};

// Copies share one sink. The level methods take no lock and call the sink on
// the caller's thread, holding a reference to it for the call, so a sink
// swapped or removed meanwhile on another thread stays alive until the call
// returns; an exception from the sink propagates to the caller. Any thread
// may log, swap the sink or copy a logger at any time; only destruction
// needs the logger to be out of use.
class TESSEL_API Logger {
 public:
  Logger();
  Logger(const Logger& other);
  Logger& operator=(const Logger& other);
  ~Logger();

  // The process-wide logger: created once (thread-safe) on the first call,
  // the same object afterwards, and never destroyed, so threads still
  // running at process exit may log. Any thread may call it.
  static std::shared_ptr<Logger> sharedLogger();

  // Replaces the sink with a copy of `logger`; an empty pointer silences the
  // logger. The previous sink is released once no call on another thread
  // is still taking a reference to it (calls already in its log() keep
  // their own). May be called from inside a sink's log().
  void set_inner_logger(const std::shared_ptr<ILogger>& logger);

  void trace(const std::string& message);
  void verbose(const std::string& message);
  void debug(const std::string& message);
  void info(const std::string& message);
  void warning(const std::string& message);
  void error(const std::string& message);
  // Logs at level 4; does not end the process.
  void fatal(const std::string& message);

 private:
  using Sink = std::shared_ptr<ILogger>;

  void forward(const std::string& message, LogLevel level);
  // A reference to the current sink, taken without a lock.
  Sink current_sink() const;

  // The sink is published as an immutable box that readers copy from without
  // a lock. A reader counts itself in the slot of the epoch it entered; a
  // writer swaps the box, moves to the next epoch and frees the old box once
  // the slot of the epoch it left is empty.
  std::atomic<const Sink*> inner_logger{nullptr};
  mutable std::atomic<unsigned> readers_[2] = {};
  std::atomic<unsigned> epoch_{0};
  std::mutex writer_mutex_;  // serialises set_inner_logger and copy assignment
};

// Returns "[moduleName:<moduleName>][pointName:<pointName>][msg:<msg>]",
// followed by "[fp:<fp>]" when fp is not empty. Arguments are copied byte for
// byte, without escaping or trimming. Thread-safe.
TESSEL_API std::string GenerateLogPrefix(const std::string& moduleName,
                                         const std::string& pointName,
                                         const std::string& msg,
                                         const std::string& fp);

}  // namespace tessel

#endif  // TESSEL_COMMON_LOGGER_H_
