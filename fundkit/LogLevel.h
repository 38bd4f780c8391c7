// The seven log levels, their names and syslog priorities, and the reading of a level from text.
#pragma once

#include <cstdint>
#include <string_view>

namespace tunadm {

// One level. Levels are ordered by their place in kLogLevels, TRACE lowest.
struct LogLevelDescriptor {
  std::uint32_t marker;
  int syslog_priority;
  // Each views a literal, so a NUL byte follows.
  std::string_view short_name;
  std::string_view full_name;
  std::string_view alternative_name;  // empty when there is none
};

inline constexpr std::uint32_t kLogLevelMarker = 12345;

// Deliberate: TRACE and DEBUG share a priority, syslog has nothing below debug.
inline constexpr LogLevelDescriptor kLogLevels[] = {
    {kLogLevelMarker, 7, "T~", "TRACE", ""},       {kLogLevelMarker, 7, "D~", "DEBUG", ""},
    {kLogLevelMarker, 6, "I~", "INFO", ""},        {kLogLevelMarker, 5, "N~", "NOTICE", ""},
    {kLogLevelMarker, 4, "W~", "WARNING", "WARN"}, {kLogLevelMarker, 3, "E~", "ERROR", "ERR"},
    {kLogLevelMarker, 2, "F~", "FATAL", ""},
};

// A level is a reference to one entry of kLogLevels; compare with < and >=.
using LogLevel = const LogLevelDescriptor*;

inline constexpr LogLevel kLogTrace = &kLogLevels[0];
inline constexpr LogLevel kLogDebug = &kLogLevels[1];
inline constexpr LogLevel kLogInfo = &kLogLevels[2];
inline constexpr LogLevel kLogNotice = &kLogLevels[3];
inline constexpr LogLevel kLogWarning = &kLogLevels[4];
inline constexpr LogLevel kLogError = &kLogLevels[5];
inline constexpr LogLevel kLogFatal = &kLogLevels[6];

// No level. Not valid; wherever a threshold test meets it, it counts as INFO.
inline constexpr LogLevel kLogUnset = nullptr;

// True for the seven entries of kLogLevels only. Any pointer value may be given.
[[nodiscard]] bool isValidLevel(LogLevel level);

// For a value that is not one of the seven, each returns a substitute ("X~", "<log level>", 6) and
// logs "invalid log level" once.
const char* loglevel_shortname(LogLevel level);
const char* loglevel_fullname(LogLevel level);
int loglevel_to_syslog(LogLevel level);

// The level that `text` begins with, as a short name ("w~") or as a full name that may stand in
// brackets ("[Error] ..."), without regard to case or to leading bytes that are not graphic. A NUL
// byte ends the text. INFO for null, for a text without graphic bytes and for everything unknown.
// Reads only as far as it needs to, and allocates nothing.
LogLevel parseLevel(std::string_view text);
LogLevel parseLevel(const char* text);

// False only if no text that begins with `byte` is at or above `threshold` for parseLevel.
bool mayBeginLevel(char byte, LogLevel threshold);

}  // namespace tunadm
