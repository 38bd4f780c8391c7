#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <initializer_list>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "fundkit/Duration.h"
#include "fundkit/Mutex.h"
#include "fundkit/SignalHold.h"
#include "fundkit/ThreadUtils.h"
#include "fundkit/TimeUtils.h"
#include "fundkit/Timestamp.h"

namespace tunadm {
namespace {

std::string report;

// Every wait and hold that is noted takes 3 milliseconds at least.
void passTime() {
  for (const TimePoint start = monotonicTime(); monotonicTime() - start < 3000;) continue;
}

void note(const char* name, const char* holder, Duration threshold, Duration measured) {
  EXPECT_TRUE(measured >= 1000 && measured < kMinute) << measured;
  report = std::string(name) + "," + holder + "," + std::to_string(threshold);
}

TEST(ThreadName, OfUpToFifteenBytes) {
  std::thread named([] {
    EXPECT_TRUE(setThreadName("fifteen bytes.."));
    for (const char* refused : {"sixteen bytes...", "", static_cast<const char*>(nullptr)})
      EXPECT_FALSE(setThreadName(refused));
    EXPECT_EQ(threadName(), "fifteen bytes..");
  });
  named.join();
}

TEST(Mutex, HoldThresholds) {
  setLongHoldHandler(&note);
  ASSERT_TRUE(setThreadName("holder"));
  const auto reportOf = [](Lockable&& mutex) {
    report.clear();
    for (int i = 0; i < 2; ++i) {
      mutex.lock();
      passTime();
      mutex.unlock();
    }
    return report;
  };
  EXPECT_EQ(reportOf(TimedMutex("", kDay, -5)), "<unnamed mutex>,holder,0");
  EXPECT_EQ(reportOf(TimedMutex(nullptr, kDay, 0)), "<unnamed mutex>,holder,0");
  EXPECT_EQ(reportOf(PortableMutex("a", kDay, 1)), "a,holder,1");
  EXPECT_EQ(reportOf(PortableMutex("d", kDay, kDay)), "");
  EXPECT_EQ(reportOf(PortableMutex("plain", 0, 1)) + reportOf(PortableMutex("plain", 1, 0)), "");
  EXPECT_EQ(reportOf(PortableMutex()), "");
}

// What is noted when another thread waits for a mutex of this threshold for some 3 milliseconds.
std::string contentionOf(Duration threshold) {
  report.clear();
  TimedMutex mutex("m", threshold, kDay);
  // In the first round already, unless the waiter starts late.
  const int rounds = threshold < kDay ? 1000 : 1;
  for (int round = 0; round < rounds && report.empty(); ++round) {
    mutex.lock();
    std::thread waiter([&mutex] {
      EXPECT_TRUE(setThreadName("waiter"));
      const std::lock_guard<Lockable> hold(mutex);
    });
    passTime();
    mutex.unlock();
    waiter.join();
  }
  return report;
}

TEST(Mutex, WarnsOfTheWaiter) {
  setContentionHandler(&note);
  EXPECT_EQ(contentionOf(1000), "m,waiter,1000");
  EXPECT_EQ(contentionOf(kDay), "");
}

TEST(Mutex, DefaultWarnings) {
  testing::internal::CaptureStderr();
  warnOfContention("m", "holder", 1000, 2500);
  warnOfLongHold("m", "holder", 1000, -2999);
  warnOfLongHold("m", "holder", 1, (std::int64_t{1} << 32) * 1000);
  setLongHoldHandler(nullptr);
  TimedMutex mutex("", kDay, 0);
  mutex.lock();
  passTime();
  mutex.unlock();
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(said.starts_with(
      "lock contention warning, 'm' took 2ms to acquire\nlock warning, 'm' held for -2ms\n"
      "lock warning, 'm' held for 0ms\nlock warning, '<unnamed mutex>' held for "))
      << said;
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
  for (const std::int64_t duration : std::initializer_list<std::int64_t>{
           0, 1, 2000, 9999, 10001, 9999999, 10000000, 120000000, 599999999, 600000000, 7199999999,
           7200000000, 36060000000, 86400000000, 863999999999, 867600000000, -3000000, INT64_MIN})
    texts += formatDuration(duration) + ", ";
  EXPECT_EQ(texts,
            "0 seconds, 1 usec, 2 ms, 9999 usecs, 10 ms, 9999 ms, 10 secs, "
            "2 mins, 599 secs, 10 mins, 119 mins, 2 hrs, 10 hrs, 1 day, 239 hrs, "
            "10 days, -3 secs, -106751991 days, ");
}

TEST(Timestamp, FormatAndParse) {
  EXPECT_EQ(formatTimestamp(999999, false, ' '), "1970-01-01 00:00:00");
  EXPECT_EQ(formatTimestamp(-1, true, ' '), "1969-12-31 23:59:59.999999");
  EXPECT_EQ(formatTimestamp(1709210096012345, true, 'T'), "2024-02-29T12:34:56.012345");
  const ParseCase cases[] = {
      {1709210096000000, {"2024-02-29T12:34:56", "2024-2-29T 12:34:56.9", "2023-13-60T11:94:56"}},
      {-2000000, {"1969-12-31T23:59:58"}},
      {0, {"20240-02-29T12:34:56", "2024-02-29 12:34:56", "2024-02-29T12:34:", ""}}};
  for (const auto& [result, texts] : cases)
    for (const char* text : texts) EXPECT_EQ(parseTimestamp(text), result) << text;
}

TEST(Timestamp, DateStampedNames) {
  using enum StampPrecision;
  for (const auto& [precision, name] : {std::pair{kToDay, "log.20240229.gz"},
                                        {kToHour, "log.20240229-12.gz"},
                                        {kToMinute, "log.20240229-1234.gz"},
                                        {kToSecond, "log.20240229-123456.gz"}})
    EXPECT_EQ(dateStampedName("log.", 1709210096012345, ".gz", precision), name);
  const TimePoint now = currentTime();
  const TimePoint by_the_system = std::time(nullptr) * kSecond;
  EXPECT_LE(now, by_the_system + kMinute);
  EXPECT_GE(now, by_the_system - kMinute);
  const std::string stamp = dateStampedName(nullptr, 0, nullptr, kToSecond);
  EXPECT_GE(stamp, dateStampedName("", now, "", kToSecond));
  EXPECT_LE(stamp, dateStampedName("", currentTime(), "", kToSecond));
}

TEST(LocalTime, StandardOffsetAllYear) {
  ASSERT_EQ(setenv("TZ", "XST-2XDT,M3.2.0,M11.1.0", 1), 0);  // Daylight saving in April.
  EXPECT_EQ(toLocalTime(-1), 7199999999);
  EXPECT_EQ(toUtc(7199999999), -1);
  EXPECT_EQ(unsetenv("TZ"), 0);
}

// The signals that are held back now.
std::set<int> heldSignals() {
  sigset_t mask;
  EXPECT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &mask), 0);
  std::set<int> held;
  for (int number = 1; number < SIGRTMIN; ++number)
    if (sigismember(&mask, number) == 1) held.insert(number);
  return held;
}

TEST(SignalHold, AllButThoseOfTheProcessItself) {
  const std::set<int> none = heldSignals();
  std::set<int> all;
  for (int number = 1; number < 32; ++number) all.insert(number);
  for (const int own :
       {SIGKILL, SIGSTOP, SIGCHLD, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
    all.erase(own);
  {
    const SignalHold outer;
    const SignalHold inner;
    EXPECT_EQ(heldSignals(), all);
    {
      const SignalRelease release;
      EXPECT_EQ(heldSignals(), (std::set<int>{SIGTSTP, SIGTTIN, SIGTTOU}));
      const SignalHold again;
      EXPECT_EQ(heldSignals(), all);
    }
    EXPECT_EQ(heldSignals(), all);
  }
  const SignalRelease without_a_hold;
  EXPECT_EQ(heldSignals(), none);
}

TEST(SignalHold, ResetForAnotherProgram) {
  EXPECT_EXIT(
      {
        const SignalHold hold;
        (void)std::signal(SIGHUP, SIG_IGN);
        (void)std::signal(SIGUSR1, [](int) {});
        resetSignals();
        const bool defaults =
            std::signal(SIGHUP, SIG_IGN) == SIG_DFL && std::signal(SIGUSR1, SIG_IGN) == SIG_DFL;
        std::_Exit(defaults && heldSignals().empty() ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tunadm
