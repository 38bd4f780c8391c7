// Levels, durations and times as texts. The input's first eight bytes are a number, too.
#include <cstring>

#include "fundkit/AsciiText.h"
#include "fundkit/Duration.h"
#include "fundkit/LogLevel.h"
#include "fundkit/Timestamp.h"
#include "fuzz/Fuzz.h"
#include "json/AsciiCase.h"

namespace tunadm {

static LogLevel expectedLevel(std::string_view text) {
  const std::size_t start = text.starts_with('[') ? 1 : 0;
  const std::string_view name = text.substr(start, text.find_first_of(" ]", start) - start);
  if (name.empty()) return kLogInfo;
  for (const auto& level : kLogLevels)
    for (const std::string_view other : {level.full_name, level.alternative_name})
      if (equalIgnoringCase(name, other) || equalIgnoringCase(text.substr(0, 2), level.short_name))
        return &level;
  for (const char* fatal : {"PANIC", "EMERG", "EMERGENCY", "CRITICAL", "ALERT"})
    if (equalIgnoringCase(name, fatal)) return kLogFatal;
  return kLogInfo;
}

void checkInput(const std::string& text) {
  require(parseLevel(text) == expectedLevel(trimGraphic(text.c_str())), "the level");
  TimePoint time = parseTimestamp(text);
  std::memcpy(&time, text.data(), std::min(text.size(), sizeof time));
  for (const Duration duration : {time, parseDuration(text.c_str())}) {
    const std::string shown = formatDuration(duration);
    require(formatDuration(parseDuration(shown.c_str())) == shown, "a duration reads as shown");
  }
  const std::string stamp = formatTimestamp(time, false, 'T');
  const std::string again = formatTimestamp(parseTimestamp(stamp), false, 'T');
  require(again == stamp || stamp.size() > 19 || stamp[0] == '-', "a time reads as shown");
}

}  // namespace tunadm
