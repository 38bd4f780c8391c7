// Levels, durations and times as texts. The input's first eight bytes are a number, too.
#include <strings.h>

#include <cstring>

#include "fundkit/Duration.h"
#include "fundkit/LogLevel.h"
#include "fundkit/Timestamp.h"
#include "fuzz/Fuzz.h"

namespace tunadm {

// The same in other words: no part of the program's own comparing and trimming is used.
static bool isWord(const std::string& text, std::string_view word) {
  return text.size() == word.size() && strncasecmp(text.data(), word.data(), word.size()) == 0;
}

static LogLevel expectedLevel(const std::string& line) {
  const std::string text(trimmed(line));
  const std::size_t start = text.starts_with('[') ? 1 : 0;
  const std::string name = text.substr(start, text.find_first_of(" ]", start) - start);
  if (name.empty()) return kLogInfo;
  for (const auto& level : kLogLevels)
    if (isWord(text.substr(0, 2), level.short_name)) return &level;
  for (const auto& level : kLogLevels)
    if (isWord(name, level.full_name) || isWord(name, level.alternative_name)) return &level;
  for (const char* fatal : {"PANIC", "EMERG", "EMERGENCY", "CRITICAL", "ALERT"})
    if (isWord(name, fatal)) return kLogFatal;
  return kLogInfo;
}

void checkInput(const std::string& text) {
  const std::string until_nul = text.substr(0, text.find('\0'));
  require(parseLevel(text) == expectedLevel(until_nul), "the level");
  TimePoint time = parseTimestamp(text);
  std::memcpy(&time, text.data(), std::min(text.size(), sizeof(time)));
  for (const Duration duration : {time, parseDuration(text.c_str())}) {
    const std::string shown = formatDuration(duration);
    require(formatDuration(parseDuration(shown.c_str())) == shown, "a duration reads as shown");
  }
  const std::string stamp = formatTimestamp(time, false, 'T');
  const std::string again = formatTimestamp(parseTimestamp(stamp), false, 'T');
  require(again == stamp || stamp.size() > 19 || stamp[0] == '-', "a time reads as shown");
}

}  // namespace tunadm
