#include "fundkit/Timestamp.h"

#include <cstddef>
#include <cstdio>
#include <ctime>

namespace tunadm {
namespace {

// Enough for every field at the full width of an int, so that the compiler sees no truncation.
constexpr std::size_t kTextSize = 128;

// How many characters of "-123456" a precision leaves out.
std::size_t droppedBytes(StampPrecision precision) {
  switch (precision) {
    case StampPrecision::kToDay:
      return 7;
    case StampPrecision::kToHour:
      return 4;
    case StampPrecision::kToMinute:
      return 2;
    case StampPrecision::kToSecond:
      break;
  }
  return 0;
}

}  // namespace

BrokenDownTime breakDown(TimePoint time) {
  // Rounded down, also before the epoch, so that the fraction is never negative.
  TimePoint seconds = time / kSecond;
  int fraction = static_cast<int>(time % kSecond);
  if (fraction < 0) {
    --seconds;
    fraction += static_cast<int>(kSecond);
  }
  const auto whole = static_cast<time_t>(seconds);
  tm date{};
  gmtime_r(&whole, &date);  // fails only for years beyond an int
  return {date.tm_year + 1900, date.tm_mon + 1, date.tm_mday,    date.tm_hour,
          date.tm_min,         date.tm_sec,     fraction / 1000, fraction % 1000};
}

std::string formatTimestamp(TimePoint time, bool with_fraction, char separator) {
  const BrokenDownTime date = breakDown(time);
  char text[kTextSize];
  std::snprintf(text, sizeof(text), "%04d-%02d-%02d%c%02d:%02d:%02d", date.year, date.month,
                date.day, separator, date.hour, date.minute, date.second);
  std::string stamp = text;
  if (!with_fraction) return stamp;
  std::snprintf(text, sizeof(text), ".%06d", date.millisecond * 1000 + date.microsecond);
  return stamp + text;
}

TimePoint parseTimestamp(const std::string& text) {
  tm date{};
  constexpr const char* kFormat = "%04d-%02d-%02dT%02d:%02d:%02d";
  // The widths keep every number within four characters, so none can overflow unnoticed.
  // NOLINTNEXTLINE(cert-err34-c): see above.
  const int fields = std::sscanf(text.c_str(), kFormat, &date.tm_year, &date.tm_mon, &date.tm_mday,
                                 &date.tm_hour, &date.tm_min, &date.tm_sec);
  if (fields != 6) return 0;
  date.tm_year -= 1900;
  date.tm_mon -= 1;
  return timegm(&date) * kSecond;
}

std::string dateStampedName(const char* prefix, TimePoint time, const char* suffix,
                            StampPrecision precision) {
  const BrokenDownTime date = breakDown(time == 0 ? currentTime() : time);
  char text[kTextSize];
  std::snprintf(text, sizeof(text), "%04d%02d%02d-%02d%02d%02d", date.year, date.month, date.day,
                date.hour, date.minute, date.second);
  std::string stamp = text;
  stamp.resize(stamp.size() - droppedBytes(precision));
  std::string name = prefix == nullptr ? "" : prefix;
  name += stamp;
  if (suffix != nullptr) name += suffix;
  return name;
}

}  // namespace tunadm
