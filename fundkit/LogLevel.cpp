#include "fundkit/LogLevel.h"

#include <array>
#include <cstddef>
#include <iterator>

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

// True for the first byte of a name of `lowest` or of a higher level.
constexpr bool beginsHigherName(char byte, LogLevel lowest) {
  for (LogLevel level = lowest; level != std::end(kLogLevels); ++level) {
    if (asciiLower(byte) == asciiLower(level->full_name[0])) return true;
  }
  for (const std::string_view word : kFatalWords) {
    if (asciiLower(byte) == asciiLower(word[0])) return true;
  }
  return false;
}

// Decides about nearly all lines of a log that begin with no level.
constexpr std::array<bool, 256> kMayBeginName = [] {
  std::array<bool, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const char byte = static_cast<char>(i);
    table[i] = byte == '[' || beginsHigherName(byte, kLogTrace);
  }
  return table;
}();

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

bool mayBeginLevel(char byte, LogLevel threshold) {
  return threshold <= kLogInfo || !isGraphic(byte) || byte == '[' ||
         beginsHigherName(byte, threshold);
}

LogLevel parseLevel(std::string_view text) {
  while (!text.empty() && text[0] != '\0' && !isGraphic(text[0])) text.remove_prefix(1);
  if (text.empty() || !kMayBeginName[static_cast<unsigned char>(text[0])]) return kLogInfo;
  if (text.size() > 1 && text[1] == '~') {  // as in all short names
    for (const LogLevelDescriptor& entry : kLogLevels) {
      if (beginsWithName(text, entry.short_name)) return &entry;
    }
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
