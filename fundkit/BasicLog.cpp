#include "fundkit/BasicLog.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <deque>
#include <new>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/TerminalText.h"

namespace tunadm {
namespace {

struct LoggerRegistry {
  LoggerRegistry() { loggers.emplace_back("fundkit", default_threshold); }

  LogLevel default_threshold = kLogInfo;
  std::deque<Logger> loggers;  // its elements never move: modules keep references to them
};

LoggerRegistry& registry() {
  static LoggerRegistry instance;
  return instance;
}

AssertHandler installed_handler = nullptr;

// Short level name, logger, module, function, text and details in one line, whatever they hold.
std::string logLine(const BasicLog::LogMessage& message) {
  std::string line = loglevel_shortname(message.level);
  for (const std::string* part : {&message.logger_name, &message.module, &message.function}) {
    line.append(" ").append(*part);
  }
  line.append(": ").append(message.text);
  for (const std::string& detail : message.details) line.append("; ").append(detail);
  return withoutControls(line).append("\n");
}

}  // namespace

void Logger::setThreshold(LogLevel threshold) {
  own_ = isValidLevel(threshold) ? threshold : kLogUnset;
  adopt(registry().default_threshold);
}

void Logger::adopt(LogLevel default_threshold) {
  effective_ = own_ == kLogUnset ? default_threshold : own_;
}

// One write for the whole line, so that lines of several processes do not mix.
void Logger::accept(std::unique_ptr<const BasicLog::LogMessage> message) const {
  const int saved_errno = errno;
  writeOutput(STDERR_FILENO, logLine(*message));
  errno = saved_errno;
}

Logger& getLogger(std::string_view name) {
  LoggerRegistry& known = registry();
  for (Logger& logger : known.loggers) {
    if (logger.name() == name) return logger;
  }
  try {
    return known.loggers.emplace_back(name, known.default_threshold);
  } catch (const std::bad_alloc&) {
    TUNADM_LOG(fundkitLogger(), kLogError, "BasicLog", "getLogger",
               "failed to create a logger object");
    return fundkitLogger();
  }
}

Logger& fundkitLogger() { return registry().loggers.front(); }

Logger& programLogger() {
  static Logger& logger = getLogger("tunadm");
  return logger;
}

void setDefaultThreshold(LogLevel threshold) {
  LoggerRegistry& known = registry();
  known.default_threshold = isValidLevel(threshold) ? threshold : kLogInfo;
  for (Logger& logger : known.loggers) logger.adopt(known.default_threshold);
}

LogStatement::LogStatement(const Logger& logger, std::string_view logger_name, LogLevel level,
                           std::string_view text, std::string_view module,
                           std::string_view function)
    : logger_(logger), message_(std::make_unique<BasicLog::LogMessage>()) {
  message_->level = level;
  message_->logger_name = logger_name;
  message_->module = module;
  message_->function = function;
  message_->text = text;
}

LogStatement& LogStatement::detail(const char* format, ...) {
  if (message_ == nullptr) return *this;
  va_list values;
  va_start(values, format);
  va_list values_again;
  va_copy(values_again, values);
  const int length = std::vsnprintf(nullptr, 0, format, values);
  if (length >= 0) {
    std::string& text = message_->details.emplace_back(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, values_again);  // cannot be longer
  }
  va_end(values_again);
  va_end(values);
  return *this;
}

void LogStatement::end() {
  if (message_ != nullptr) logger_.accept(std::move(message_));
}

void setAssertHandler(AssertHandler handler) { installed_handler = handler; }

void assertFailure(const char* file, int line, const char* message) {
  (installed_handler == nullptr ? &defaultAssertFailure : installed_handler)(file, line, message);
}

void defaultAssertFailure(const char* file, int line, const char* message) {
  char text[1024];
  std::snprintf(text, sizeof(text), "assert error, %s line %d, \"%s\" \n",  // cut if longer
                file == nullptr ? "<filename unknown>" : file, line,
                message == nullptr ? "<no message>" : message);
  writeOutput(STDERR_FILENO, text);
  TUNADM_LOG(fundkitLogger(), kLogError, "BasicLog", "defaultAssertFailure", text);
  // One that is ignored or held back would let the process go on.
  std::signal(SIGILL, SIG_DFL);
  sigset_t illegal;
  sigemptyset(&illegal);
  sigaddset(&illegal, SIGILL);
  pthread_sigmask(SIG_UNBLOCK, &illegal, nullptr);
  std::raise(SIGILL);
}

}  // namespace tunadm
