#include "fundkit/LogLevel.h"

#include <cstddef>

#include "fundkit/AsciiText.h"
#include "fundkit/BasicLog.h"
#include "json/AsciiCase.h"

namespace tunadm {
namespace {

// Words other than its name that mean FATAL.
constexpr std::string_view kFatalWords[] = {"PANIC", "EMERG", "EMERGENCY", "CRITICAL", "ALERT"};

bool beginsWithName(std::string_view text, std::string_view name) {
  return equalIgnoringCase(text.substr(0, name.size()), name);
}

// True for the first byte of any name, and for the bracket that may precede one: a quick answer for
// nearly all lines of a log that do not begin with a level.
bool mayBeginName(char byte) {
  constexpr std::string_view kFirstBytes = "tdinwefpca[";
  return kFirstBytes.find(asciiLower(byte)) != std::string_view::npos;
}

// True when trimming the end would leave nothing. Stops at the first graphic byte.
bool isBlankToEnd(std::string_view text) {
  for (const char byte : text) {
    if (byte == '\0') return true;
    if (isGraphic(byte)) return false;
  }
  return true;
}

// Deliberate: of the blanks only the space ends a name before further text.
bool isName(std::string_view text, std::string_view name) {
  if (name.empty() || !beginsWithName(text, name)) return false;
  const std::string_view after = text.substr(name.size());
  return after.empty() || after[0] == ' ' || after[0] == ']' || isBlankToEnd(after);
}

void reportInvalidLevel(const char* function) {
  TUNADM_LOG(fundkitLogger(), kLogError, "BasicLog", function, "invalid log level");
}

}  // namespace

bool isValidLevel(LogLevel level) {
  for (const LogLevelDescriptor& entry : kLogLevels) {
    if (level == &entry) return true;
  }
  return false;
}

const char* loglevel_shortname(LogLevel level) {
  if (isValidLevel(level)) return level->short_name.data();
  reportInvalidLevel("loglevel_shortname");
  return "X~";
}

const char* loglevel_fullname(LogLevel level) {
  if (isValidLevel(level)) return level->full_name.data();
  reportInvalidLevel("loglevel_fullname");
  return "<log level>";
}

int loglevel_to_syslog(LogLevel level) {
  if (isValidLevel(level)) return level->syslog_priority;
  reportInvalidLevel("loglevel_to_syslog");
  return kLogInfo->syslog_priority;
}

LogLevel parseLevel(std::string_view text) {
  while (!text.empty() && text[0] != '\0' && !isGraphic(text[0])) text.remove_prefix(1);
  if (text.empty() || !mayBeginName(text[0])) return kLogInfo;
  for (const LogLevelDescriptor& entry : kLogLevels) {
    if (beginsWithName(text, entry.short_name)) return &entry;
  }
  if (text[0] == '[') text.remove_prefix(1);
  for (const LogLevelDescriptor& entry : kLogLevels) {
    if (isName(text, entry.full_name) || isName(text, entry.alternative_name)) return &entry;
  }
  for (const std::string_view word : kFatalWords) {
    if (isName(text, word)) return kLogFatal;
  }
  return kLogInfo;
}

LogLevel parseLevel(const char* text) {
  return text == nullptr ? kLogInfo : parseLevel(std::string_view(text));
}

}  // namespace tunadm
