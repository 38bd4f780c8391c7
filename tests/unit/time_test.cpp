#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <cstdint>
#include <string>
#include <vector>

#include "fundkit/Duration.h"
#include "fundkit/TimeUtils.h"
#include "fundkit/Timestamp.h"

namespace tunadm {
namespace {

struct ParseCase {
  std::int64_t result;
  std::vector<std::string> texts;
};

TEST(Duration, Parse) {
  const ParseCase cases[] = {
      {1, {"1usec", "1usecs", "1microsecond", "1microseconds"}},
      {1000, {"1ms", "1msec", "1msecs", "1milli", "1millis", "1millisecond", "1MilliSeconds"}},
      {5000000, {"5 s", "5sec", " +5\x01\n\x1fsecs\x1flater", "5 second", "5 seconds later"}},
      {60000000, {"1m", "1min", "1mins", "1minute", "1minutes"}},
      {3600000000, {"1h", "1hr", "1hrs", "1hour", "1hours"}},
      {-172800000000, {"-2 D", "-2day", "-2DAYS"}},
      {0, {"", "s", "5", "5 \t", "5 sx", "5 s\x80", "5\x80s", "5us", "5 mi", "5 milliss", "5 5"}},
      {9223372036854000000, {"9223372036854 s"}},
      {INT64_MAX, {"9223372036855 s", "99999999999999999999 usec"}},
      {INT64_MIN, {"-9223372036855 s", "-9223372036854775808 usec", "-99999999999999999999 d"}}};
  for (const auto& c : cases) {
    for (const auto& text : c.texts) EXPECT_EQ(parseDuration(text.c_str()), c.result) << text;
  }
  EXPECT_EQ(parseDuration(nullptr), 0);
}

TEST(Duration, Format) {
  std::string texts;
  for (const std::int64_t duration :
       {0L,           1L,           1500L,         2000L,         9999L,        10001L,
        1000999L,     9999999L,     10000000L,     60000000L,     90000000L,    120999999L,
        599999999L,   600000000L,   3600000000L,   7200000000L,   10000000000L, 35999999999L,
        36000000000L, 86400000000L, 863999999999L, 867600000000L, -1L,          -3000000L,
        INT64_MAX,    INT64_MIN}) {
    texts += formatDuration(duration) + ", ";
  }
  EXPECT_EQ(texts,
            "0 seconds, 1 usec, 1500 usecs, 2 ms, 9999 usecs, 10 ms, 1 sec, 9999 ms, 10 secs, "
            "1 min, 90 secs, 2 mins, 599 secs, 10 mins, 1 hr, 2 hrs, 166 mins, 599 mins, 10 hrs, "
            "1 day, 239 hrs, 10 days, -1 usec, -3 secs, 106751991 days, -106751991 days, ");
}

TEST(Timestamp, Format) {
  EXPECT_EQ(formatTimestamp(999999, false, ' '), "1970-01-01 00:00:00");
  EXPECT_EQ(formatTimestamp(1709210096012345, true, 'T'), "2024-02-29T12:34:56.012345");
  EXPECT_EQ(formatTimestamp(-1, true, 'T'), "1969-12-31T23:59:59.999999");
  EXPECT_EQ(formatTimestamp(-1000000, true, 'T'), "1969-12-31T23:59:59.000000");
  EXPECT_EQ(formatTimestamp(INT64_MAX, true, 'T'), "294247-01-10T04:00:54.775807");
  EXPECT_EQ(formatTimestamp(INT64_MIN, true, 'T'), "-290308-12-21T19:59:05.224192");
}

TEST(Timestamp, Parse) {
  const ParseCase cases[] = {
      {1709210096000000, {"2024-02-29T12:34:56", "2024-2-29T 12:34:56.9", "2023-13-60T11:94:56"}},
      {1709210045000000, {"2024-02-29T12:34:+56"}},
      {-2000000, {"1969-12-31T23:59:58"}},
      {-93719927349000000, {"-999--9--9T-9:-9:-9"}},
      {0, {"20240-02-29T12:34:56", "2024-02-29 12:34:56", "2024-02-29T12:34:", ""}}};
  for (const auto& c : cases) {
    for (const auto& text : c.texts) EXPECT_EQ(parseTimestamp(text), c.result) << text;
  }
}

TEST(Timestamp, DateStampedNames) {
  using enum StampPrecision;
  EXPECT_EQ(dateStampedName("log.", 1709210096012345, ".gz", kToDay), "log.20240229.gz");
  EXPECT_EQ(dateStampedName("", 1709210096012345, nullptr, kToHour), "20240229-12");
  EXPECT_EQ(dateStampedName(nullptr, 1709210096012345, "~", kToMinute), "20240229-1234~");
  const std::string long_text(5000, 'p');
  EXPECT_EQ(dateStampedName(long_text.c_str(), INT64_MIN, long_text.c_str(), kToSecond),
            long_text + "-2903081221-195905" + long_text);
  const std::string before = dateStampedName("", time(nullptr) * 1000000, "", kToSecond);
  const std::string now = dateStampedName("", 0, "", kToSecond);
  EXPECT_LE(before, now);
  // time() may lag behind by a tick.
  EXPECT_LE(now, dateStampedName("", (time(nullptr) + 1) * 1000000, "", kToSecond));
}

TEST(LocalTime, StandardOffsetAllYear) {
  ASSERT_EQ(setenv("TZ", "XST-2XDT,M3.2.0,M11.1.0", 1), 0);  // Daylight saving in April.
  EXPECT_EQ(toLocalTime(-1), 7199999999);
  EXPECT_EQ(toUtc(7199999999), -1);
  EXPECT_EQ(toLocalTime(INT64_MAX - 7199999999), INT64_MAX);
  EXPECT_EQ(toUtc(INT64_MIN + 1), INT64_MIN);
  ASSERT_EQ(setenv("TZ", "XST+5:30", 1), 0);
  EXPECT_EQ(toLocalTime(0), -19800000000);
  unsetenv("TZ");
}

}  // namespace
}  // namespace tunadm
