// Logger is the front through which the SDK core and the host log. It
// forwards each message unchanged, with its level number, to a sink
// (ILogger) that the host installs; without a sink messages are dropped. It
// never logs on its own behalf. GenerateLogPrefix builds the bracketed prefix
// of structured log lines.
#ifndef TESSEL_COMMON_LOGGER_H_
#define TESSEL_COMMON_LOGGER_H_

#include <memory>
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
// the caller's thread; an exception from the sink propagates to the caller.
// set_inner_logger takes no lock either: install the sink before other
// threads log.
class TESSEL_API Logger {
 public:
  Logger();
  Logger(const Logger& other);
  Logger& operator=(const Logger& other);
  ~Logger();

  // The process-wide logger: created once (thread-safe) on the first call,
  // the same object afterwards. Any thread may call it.
  static std::shared_ptr<Logger> sharedLogger();

  // Replaces the sink with a copy of `logger`; an empty pointer silences the
  // logger. The previous sink is released.
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
  void forward(const std::string& message, LogLevel level);

  std::shared_ptr<ILogger> inner_logger;
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
