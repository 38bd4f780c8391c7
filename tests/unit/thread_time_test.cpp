#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "fundkit/Duration.h"
#include "fundkit/Mutex.h"
#include "fundkit/ThreadUtils.h"
#include "fundkit/TimeUtils.h"
#include "fundkit/Timestamp.h"

namespace tunadm {
namespace {

std::string contention, long_hold;

// Every wait and hold that is noted takes 3 milliseconds at least.
void passTime() {
  for (const TimePoint start = monotonicTime(); monotonicTime() - start < 3000;) continue;
}

std::string noted(const char* name, const char* holder, Duration threshold, Duration measured) {
  EXPECT_TRUE(measured >= threshold && measured < kMinute);
  return std::string(name) + "," + holder + "," + std::to_string(threshold);
}

void noteContention(const char* name, const char* holder, Duration threshold, Duration measured) {
  contention = noted(name, holder, threshold, measured);
}

void noteLongHold(const char* name, const char* holder, Duration threshold, Duration measured) {
  long_hold = noted(name, holder, threshold, measured);
}

TEST(Mutex, HoldThresholds) {
  setLongHoldHandler(&noteLongHold);
  ASSERT_TRUE(setThreadName("holder"));
  const auto reportOf = [](Lockable&& mutex) {
    long_hold.clear();
    mutex.lock();
    passTime();
    mutex.unlock();
    return long_hold;
  };
  EXPECT_EQ(reportOf(TimedMutex("", kDay, -5)), "<unnamed mutex>,holder,0");
  EXPECT_EQ(reportOf(PortableMutex("a", kDay, 1)), "a,holder,1");
  EXPECT_EQ(reportOf(PortableMutex("d", kDay, kDay)), "");
}

TEST(Mutex, WarnsOfTheWaiter) {
  setContentionHandler(&noteContention);
  TimedMutex mutex("m", 1000, kDay);
  // In the first round already, unless the waiter starts late.
  for (int round = 0; round < 1000 && contention.empty(); ++round) {
    mutex.lock();
    std::thread waiter([&mutex] {
      EXPECT_TRUE(setThreadName("waiter"));
      const std::lock_guard<Lockable> hold(mutex);
    });
    passTime();
    mutex.unlock();
    waiter.join();
  }
  EXPECT_EQ(contention, "m,waiter,1000");
}

using ParseCase = std::pair<std::int64_t, std::vector<const char*>>;

TEST(Duration, ParseAndFormat) {
  const ParseCase cases[] = {
      {1, {"1usec", "1microseconds"}},
      {1000, {"1ms", "1millis", "1MilliSeconds"}},
      {5000000, {"5 s", " +5\x01\n\x1fsecs\x1flater", "5 seconds later"}},
      {3600000000, {"60m", "1hr", "1hours"}},
      {-172800000000, {"-2 D", "-2day", "-2DAYS"}},
      {0, {nullptr, "", "s", "5", "5 sx", "5 s\x80", "5\x80s", "5 mi", "5 milliss", "5 5"}},
      {INT64_MIN, {"-9223372036855 s", "-99999999999999999999 d"}}};
  for (const auto& [result, texts] : cases)
    for (const char* text : texts) EXPECT_EQ(parseDuration(text), result) << text;
  std::string texts;
  for (const std::int64_t duration :
       {0L, 1L, 2000L, 9999L, 10001L, 9999999L, 10000000L, 90000000L, 599999999L, 600000000L,
        10000000000L, 36000000000L, 863999999999L, 867600000000L, -3000000L, INT64_MIN}) {
    texts += formatDuration(duration) + ", ";
  }
  EXPECT_EQ(texts,
            "0 seconds, 1 usec, 2 ms, 9999 usecs, 10 ms, 9999 ms, 10 secs, 90 secs, 599 secs, "
            "10 mins, 166 mins, 10 hrs, 239 hrs, 10 days, -3 secs, -106751991 days, ");
}

TEST(Timestamp, FormatParseAndNames) {
  EXPECT_EQ(formatTimestamp(999999, false, ' '), "1970-01-01 00:00:00");
  EXPECT_EQ(formatTimestamp(1709210096012345, true, 'T'), "2024-02-29T12:34:56.012345");
  const ParseCase cases[] = {
      {1709210096000000, {"2024-02-29T12:34:56", "2024-2-29T 12:34:56.9", "2023-13-60T11:94:56"}},
      {-2000000, {"1969-12-31T23:59:58"}},
      {0, {"20240-02-29T12:34:56", "2024-02-29 12:34:56", "2024-02-29T12:34:", ""}}};
  for (const auto& [result, texts] : cases)
    for (const char* text : texts) EXPECT_EQ(parseTimestamp(text), result) << text;
  using enum StampPrecision;
  EXPECT_EQ(dateStampedName("log.", 1709210096012345, ".gz", kToDay), "log.20240229.gz");
}

TEST(LocalTime, StandardOffsetAllYear) {
  ASSERT_EQ(setenv("TZ", "XST-2XDT,M3.2.0,M11.1.0", 1), 0);  // Daylight saving in April.
  EXPECT_EQ(toLocalTime(-1), 7199999999);
  EXPECT_EQ(toUtc(7199999999), -1);
  unsetenv("TZ");
}

}  // namespace
}  // namespace tunadm
