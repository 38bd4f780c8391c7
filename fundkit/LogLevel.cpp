#include "fundkit/LogLevel.h"

#include <cstddef>

#include "fundkit/AsciiText.h"
#include "fundkit/BasicLog.h"

namespace tunadm {
namespace {

// Words that stand for FATAL besides its name.
constexpr std::string_view kFatalWords[] = {"PANIC", "EMERG", "EMERGENCY", "CRITICAL", "ALERT"};

constexpr char upperAscii(char byte) {
  return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
}

// Names and short names are upper case already.
bool beginsWithName(std::string_view text, std::string_view name) {
  if (text.size() < name.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (upperAscii(text[i]) != name[i]) return false;
  }
  return true;
}

// True for the first byte of any name, and for the bracket that may stand before one. It decides
// about nearly all lines of a log that begin otherwise.
bool mayBeginName(char byte) {
  constexpr std::string_view kFirstBytes = "TDINWEFPCA[";
  return kFirstBytes.find(upperAscii(byte)) != std::string_view::npos;
}

// True when trimming the end would leave nothing. Stops at the first byte that shows something.
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
  if (!text.empty() && text[0] == '[') text.remove_prefix(1);
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
