// Time points as texts, all in UTC.
#pragma once

#include <string>

#include "fundkit/TimeUtils.h"

namespace tunadm {

// The fields as they are shown: the month counts from 1, the year from the year 0.
struct BrokenDownTime {
  int year;
  int month;
  int day;
  int hour;
  int minute;
  int second;
  int millisecond;  // 0 to 999, before the epoch too.
  int microsecond;  // 0 to 999, within the millisecond.
};

// Exact for every time point that time_t holds; the 64 bits of TimePoint span the years -290308 to
// 294247.
BrokenDownTime breakDown(TimePoint time);

// "2024-02-29T12:34:56" with `separator` for the T, followed by ".012345" if `with_fraction`. The
// year has at least four characters, and as many as it needs.
std::string formatTimestamp(TimePoint time, bool with_fraction, char separator);

// Reads "2024-02-29T12:34:56" as scanf does: blanks and a sign may precede a number, and what
// follows the seconds is ignored. Returns 0 unless all six numbers are there. They are not held to
// their ranges: month 13 is January of the next year. Every result fits.
TimePoint parseTimestamp(const std::string& text);

enum class StampPrecision { kToDay, kToHour, kToMinute, kToSecond };

// `prefix`, the date as "20240229", "20240229-12", "20240229-1234" or "20240229-123456", `suffix`;
// of any length. Time point 0 stands for now, null for an empty prefix or suffix.
std::string dateStampedName(const char* prefix, TimePoint time, const char* suffix,
                            StampPrecision precision);

}  // namespace tunadm
