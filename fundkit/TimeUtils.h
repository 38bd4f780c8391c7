// Times and durations as counts of microseconds, the clocks that measure them, and local time.
#pragma once

#include <cstdint>

namespace tunadm {

// Microseconds since the Unix epoch; negative before it.
using TimePoint = std::int64_t;

// Microseconds, of either sign.
using Duration = std::int64_t;

inline constexpr Duration kMillisecond = 1000;
inline constexpr Duration kSecond = 1000 * kMillisecond;
inline constexpr Duration kMinute = 60 * kSecond;
inline constexpr Duration kHour = 60 * kMinute;
inline constexpr Duration kDay = 24 * kHour;

// The wall clock: for showing times. It can be set, and then jumps in either direction.
TimePoint currentTime();

// A clock that cannot be set: for measuring intervals. It starts at some point in the past.
TimePoint monotonicTime();

// Between UTC and the local time of the TZ setting at the time of the call. Deliberate: both use
// the zone's standard offset in the far future, so daylight saving never counts. A result that
// does not fit becomes the nearest time point that does.
TimePoint toLocalTime(TimePoint utc);
TimePoint toUtc(TimePoint local);

}  // namespace tunadm
