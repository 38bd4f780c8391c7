// Loggers, log statements and assertion failures.
//
// Loggers are asked for and configured on the main thread. A statement may end on any thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fundkit/LogLevel.h"

namespace tunadm {

namespace BasicLog {

struct LogMessage {
  LogLevel level = kLogUnset;
  std::string logger_name;
  std::string module;
  std::string function;
  std::string text;
  std::vector<std::string> details;
};

}  // namespace BasicLog

// A named source of messages with an optional threshold of its own. Made by getLogger only.
class Logger {
 public:
  Logger(std::string_view name, LogLevel default_threshold)
      : name_(name), effective_(default_threshold) {}
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;

  const std::string& name() const { return name_; }

  // True when `level` (unset counts as INFO) is at or above the logger's own threshold or, if that
  // is unset, the default threshold.
  [[nodiscard]] bool enabled(LogLevel level) const {
    return (level == kLogUnset ? kLogInfo : level) >= effective_;
  }

  // A value that is not valid unsets the own threshold.
  void setThreshold(LogLevel threshold);

  // Writes the message to standard error at once, as one line: short level name, logger, module,
  // function, text and details, with '?' for each control character. Leaves errno as it was.
  void accept(std::unique_ptr<const BasicLog::LogMessage> message) const;

 private:
  friend void setDefaultThreshold(LogLevel threshold);

  void adopt(LogLevel default_threshold);

  std::string name_;
  LogLevel own_ = kLogUnset;
  LogLevel effective_;  // kept up to date by the setters, so that enabled() is one comparison
};

// The logger of that name, made on first use; lives as long as the program. When it cannot be
// made, this is logged and the library's own logger ("fundkit") takes its place.
Logger& getLogger(std::string_view name);

// The base library's own logger.
Logger& fundkitLogger();

// The program's logger ("tunadm").
Logger& programLogger();

// The threshold of all loggers without one of their own: INFO at first and for an invalid value.
void setDefaultThreshold(LogLevel threshold);

// One message under construction. Begin one with TUNADM_LOG, so that a disabled level costs
// nothing.
class LogStatement {
 public:
  LogStatement(const Logger& logger, std::string_view logger_name, LogLevel level,
               std::string_view text, std::string_view module, std::string_view function);
  ~LogStatement() { end(); }
  LogStatement(const LogStatement&) = delete;
  LogStatement& operator=(const LogStatement&) = delete;

  // Adds one detail: a printf-style format and its value.
  LogStatement& detail(const char* format, ...) __attribute__((format(printf, 2, 3)));

  // Hands the message to the logger; afterwards the statement holds nothing and takes no details.
  void end();

 private:
  const Logger& logger_;
  std::unique_ptr<BasicLog::LogMessage> message_;
};

// The last component of a source path; with __func__ for statements without a fixed place.
constexpr std::string_view sourceFileName(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

// TUNADM_LOG(logger, kLogError, "FileUtils", "makeUniqueFile", "failed to open file")
//     .detail("error = %s", strerror(error));
// Neither texts nor details are evaluated when the logger is not enabled for the level; logger and
// level are evaluated more than once. After an `if`, put it in braces.
#define TUNADM_LOG(logger, level, module, function, text) \
  if (!(logger).enabled(level)) {                         \
  } else                                                  \
    ::tunadm::LogStatement((logger), (logger).name(), (level), (text), (module), (function))

// Called with file name, line number and message, each text possibly null.
using AssertHandler = void (*)(const char* file, int line, const char* message);

// Installs the handler for assertion failures; null restores defaultAssertFailure.
void setAssertHandler(AssertHandler handler);

// Reports a failed assertion to the installed handler.
void assertFailure(const char* file, int line, const char* message);

// Writes the failure to standard error, logs it and raises SIGILL, which ends the process even if
// the signal is ignored or blocked.
void defaultAssertFailure(const char* file, int line, const char* message);

}  // namespace tunadm
