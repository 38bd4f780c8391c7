#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>
#include <thread>

#include "fundkit/AsciiText.h"
#include "fundkit/BasicLog.h"
#include "fundkit/Duration.h"
#include "fundkit/LogLevel.h"
#include "fundkit/Mutex.h"
#include "fundkit/SignalHold.h"
#include "fundkit/ThreadUtils.h"
#include "fundkit/TimeUtils.h"
#include "fundkit/Timestamp.h"
#include "tests/support/Rows.h"

namespace tunadm {
namespace {

TEST(AsciiText, TrimsWhatIsNotGraphic) {
  EXPECT_EQ(trimGraphic("\x7f \x80!a b~\x7f\n"), "!a b~");
  EXPECT_EQ(trimGraphic(" \t"), "");
}

// Further texts are a matter of fuzz/small_texts.cpp.
TEST(LogLevel, NamesAndPriorities) {
  std::string names;
  for (const LogLevelDescriptor& row : kLogLevels) {
    names += std::string(loglevel_shortname(&row)) + loglevel_fullname(parseLevel(row.full_name));
    names += std::to_string(loglevel_to_syslog(&row)) + " ";
    EXPECT_EQ(parseLevel(row.short_name), &row) << row.short_name;
  }
  EXPECT_EQ(names, "T~TRACE7 D~DEBUG7 I~INFO6 N~NOTICE5 W~WARNING4 E~ERROR3 F~FATAL2 ");
  EXPECT_EQ(parseLevel(static_cast<const char*>(nullptr)), kLogInfo);
  const LogLevelDescriptor damaged{};
  testing::internal::CaptureStderr();
  EXPECT_STREQ(loglevel_shortname(&damaged), "X~");
  EXPECT_STREQ(loglevel_fullname(&damaged), "<log level>");
  EXPECT_EQ(loglevel_to_syslog(&damaged), 6);
  EXPECT_EQ(std::ranges::count(testing::internal::GetCapturedStderr(), '\n'), 3);
  for (const char* text : {"err\ttext", "[F~]"}) EXPECT_EQ(parseLevel(text), kLogInfo) << text;
}

// The lowest level that the logger is enabled for, and whether it is for one that is unset.
std::string enabledFrom(const Logger& logger) {
  std::string lowest;
  for (const LogLevelDescriptor& level : kLogLevels)
    if (lowest.empty() && logger.enabled(&level)) lowest = level.full_name;
  return lowest + (logger.enabled(kLogUnset) ? " unset" : "");
}

TEST(Logger, Thresholds) {
  Logger& own = getLogger("own");
  const Logger& other = getLogger("other");
  EXPECT_EQ(enabledFrom(own), "INFO unset");
  own.setThreshold(kLogError);
  setDefaultThreshold(kLogDebug);
  EXPECT_EQ(enabledFrom(getLogger("own")) + ", " + enabledFrom(other), "ERROR, DEBUG unset");
  EXPECT_EQ(enabledFrom(getLogger("made later")), "DEBUG unset");
  own.setThreshold(kLogUnset);
  setDefaultThreshold(kLogUnset);
  EXPECT_EQ(enabledFrom(other), "INFO unset");
}

TEST(LogStatement, LeavesErrnoAsItWas) {
  const int standard_error = dup(STDERR_FILENO);
  (void)close(STDERR_FILENO);  // writing fails
  errno = EDOM;
  TUNADM_LOG(programLogger(), kLogFatal, "m", "f", "x");
  EXPECT_EQ(errno, EDOM);
  EXPECT_EQ(dup2(standard_error, STDERR_FILENO), STDERR_FILENO);
  (void)close(standard_error);
}

TEST(LogStatement, OneLineOnStandardErrorIfEnabled) {
  testing::internal::CaptureStderr();
  int evaluated = 0;
  TUNADM_LOG(programLogger(), kLogDebug, "m", "f", "x").detail("%d", ++evaluated);
  EXPECT_EQ(evaluated, 0);
  {
    LogStatement statement(programLogger(), "a\nb", kLogWarning, "could not\rget", "m", "f");
    statement.detail("%s", "forged\nE~ line\x1b[31m gr\xc3\xbc").detail("%d", 7);
    statement.end();
    statement.detail("%d", 8);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "W~ a?b m f: could not?get; forged?E~ line?[31m gr\xc3\xbc; 7\n");
}

TEST(LogStatement, ShowsNoControlCharacter) {
  expectRows(
      {"\x01 \x1f\x7f~ -> ? ??~\n",
       "\xc2\x9b \xc2\xa0 \x9b \xa0 \x80 -> ? \xc2\xa0 ? \xa0 ?\n",         // CSI, in both ways
       "\xe2\x82\x9b \xf0\x9f\x98\x80 -> \xe2\x82\x9b \xf0\x9f\x98\x80\n",  // in characters
       "\xe2\x9b \xc0\x9b \xf5\x80\x80\x80 -> \xe2? \xc0? \xf5???\n",       // no characters
       "\xe0\x9f\xbf \xed\xa0\x80 -> \xe0?\xbf \xed\xa0?\n",
       "\xf0\x8f\xbf\xbf \xf4\x90\x80\x80 -> \xf0?\xbf\xbf \xf4???\n", "\xe1\x80 -> \xe1?\n"},
      [](const std::string& text) {
        testing::internal::CaptureStderr();
        TUNADM_LOG(programLogger(), kLogFatal, "", "", text);
        return testing::internal::GetCapturedStderr().substr(sizeof("F~ tunadm  : ") - 1);
      });
}

TEST(Assertion, EndsByAnIllegalInstruction) {
  EXPECT_EXIT(
      {
        sigset_t all;
        (void)sigfillset(&all);
        (void)sigprocmask(SIG_BLOCK, &all, nullptr);
        (void)std::signal(SIGILL, SIG_IGN);
        assertFailure(nullptr, 1, std::string(2000, 'x').c_str());
      },
      testing::KilledBySignal(SIGILL),
      "^assert error, <filename unknown> line 1, \"x{981}E~ fundkit BasicLog defaultAssertFailure: "
      "assert error, ");
}

std::string report;

TEST(Assertion, GoesToTheHandler) {
  setAssertHandler([](const char* file, int line, const char* message) {
    report = file + std::to_string(line) + message;
  });
  assertFailure("f", 7, "m");
  EXPECT_EQ(report, "f7m");
  EXPECT_EXIT((setAssertHandler(nullptr), assertFailure("f", 7, "m")),
              testing::KilledBySignal(SIGILL), "f line 7");
}

// Every wait and hold that is noted takes 3 milliseconds at least.
void passTime() {
  for (const TimePoint start = monotonicTime(); monotonicTime() - start < 3000;) continue;
}

void note(const char* name, const char* holder, Duration threshold, Duration measured) {
  EXPECT_TRUE(measured >= 1000 && measured < kMinute) << measured;
  report += std::string(name) + "," + holder + "," + std::to_string(threshold) + ";";
}

TEST(ThreadName, OfUpToFifteenBytes) {
  EXPECT_TRUE(setThreadName("fifteen bytes.."));
  for (const char* refused : {"sixteen bytes...", "", static_cast<const char*>(nullptr)})
    EXPECT_FALSE(setThreadName(refused));
  EXPECT_EQ(threadName(), "fifteen bytes..");
}

TEST(Mutex, HoldThresholds) {
  setLongHoldHandler(&note);
  ASSERT_TRUE(setThreadName("holder"));
  const auto reportOf = [](Lockable&& mutex) {
    report.clear();
    for (int i = 0; i < 2; ++i) {
      const std::lock_guard<Lockable> hold(mutex);
      passTime();
    }
    return report;
  };
  const std::string unnamed = "<unnamed mutex>,holder,0;";
  EXPECT_EQ(reportOf(TimedMutex("", kDay, -5)), unnamed + unnamed);
  EXPECT_EQ(reportOf(TimedMutex(nullptr, kDay, 0)), unnamed + unnamed);
  EXPECT_EQ(reportOf(PortableMutex("a", kDay, 1)), "a,holder,1;a,holder,1;");
  EXPECT_EQ(reportOf(PortableMutex("plain", 0, 1)) + reportOf(PortableMutex("plain", 1, 0)), "");
  EXPECT_EQ(reportOf(PortableMutex("d", kDay, kDay)) + reportOf(PortableMutex()), "");
}

TEST(Mutex, WarnsOfTheWaiter) {
  setContentionHandler(&note);
  report.clear();
  TimedMutex patient("patient", kDay, kDay), watched("watched", 1000, kDay);
  // In the first round already, unless the waiter starts late.
  for (int round = 0; round < 1000 && report.empty(); ++round) {
    for (Lockable* mutex : {&patient, &watched}) {
      mutex->lock();
      std::thread waiter([mutex] {
        EXPECT_TRUE(setThreadName("waiter"));
        const std::lock_guard<Lockable> hold(*mutex);
      });
      passTime();
      mutex->unlock();
      waiter.join();
    }
  }
  EXPECT_EQ(report, "watched,waiter,1000;");
}

TEST(Mutex, DefaultWarnings) {
  testing::internal::CaptureStderr();
  warnOfContention("m", "holder", 1000, 2500);
  warnOfLongHold("m", "holder", 1000, -2999);
  warnOfLongHold("m", "holder", 1, (Duration{1} << 32) * 1000);
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

TEST(Duration, ReadAndShown) {
  EXPECT_EQ(parseDuration(nullptr), 0);
  expectRows(
      {// Every word for a unit, and both sides of the limits between two units.
       "1usec -> 1 usec", "2000 usecs -> 2 ms", "9999 microsecond -> 9999 usecs",
       "10001 microseconds -> 10 ms", "9999999 usecs -> 9999 ms", "1ms -> 1 ms", "20 msec -> 20 ms",
       "30 msecs -> 30 ms", "40 milli -> 40 ms", "1000millis -> 1 sec",
       "10001 MilliSecond -> 10 secs", "599999 milliseconds -> 599 secs", "5 s -> 5 secs",
       "601 sec -> 10 mins", " +5\x01\n\x1fsecs\x1flater -> 5 secs", "7199 second -> 119 mins",
       "863999 seconds later -> 239 hrs", "2m -> 2 mins", "60 min -> 1 hr", "120 mins -> 2 hrs",
       "601 minute -> 10 hrs", "-599 minutes -> -599 mins", "24h -> 1 day", "1hr -> 1 hr",
       "239 hrs -> 239 hrs", "241 hour -> 10 days", "-48hours -> -2 days", "-2 D -> -2 days",
       "11day -> 11 days", "-2DAYS -> -2 days",
       // Not a number and a unit.
       " -> 0 seconds", "s -> 0 seconds", "5 -> 0 seconds", "5 sx -> 0 seconds",
       "5 s\x80 -> 0 seconds", "5\x80s -> 0 seconds", "5 mi -> 0 seconds", "5 milliss -> 0 seconds",
       "5 5 -> 0 seconds",
       // As far as 64 bits go.
       "-9223372036855 s -> -106751991 days", "99999999999999999999 d -> 106751991 days"},
      [](const std::string& text) { return formatDuration(parseDuration(text.c_str())); });
}

TEST(Timestamp, ParsedAndShown) {
  EXPECT_EQ(formatTimestamp(-1, true, ' '), "1969-12-31 23:59:59.999999");
  EXPECT_EQ(formatTimestamp(1709210096012345, true, 'T'), "2024-02-29T12:34:56.012345");
  expectRows(
      {"2024-02-29T12:34:56 -> 2024-02-29 12:34:56", " -> 1970-01-01 00:00:00",
       "2024-2-29T 12:34:56.9 -> 2024-02-29 12:34:56", "2023-13-60T11:94:56 -> 2024-02-29 12:34:56",
       "1969-12-31T23:59:58 -> 1969-12-31 23:59:58", "2024-02-29T12:34: -> 1970-01-01 00:00:00",
       "2024-02-29 12:34:56 -> 1970-01-01 00:00:00", "20240-02-29T12:34:56 -> 1970-01-01 00:00:00"},
      [](const std::string& text) { return formatTimestamp(parseTimestamp(text), false, ' '); });
}

TEST(Timestamp, DateStampedNames) {
  using enum StampPrecision;
  std::string names;
  for (const StampPrecision precision : {kToDay, kToHour, kToMinute, kToSecond})
    names += dateStampedName("l.", 1709210096012345, ".gz ", precision);
  EXPECT_EQ(names, "l.20240229.gz l.20240229-12.gz l.20240229-1234.gz l.20240229-123456.gz ");
  const TimePoint now = currentTime();
  EXPECT_LE(std::abs(now - std::time(nullptr) * kSecond), kMinute);
  EXPECT_GE(dateStampedName(nullptr, 0, nullptr, kToDay), dateStampedName("", now, "", kToDay));
}

TEST(LocalTime, StandardOffsetAllYear) {
  ASSERT_EQ(setenv("TZ", "XST-2XDT,M3.2.0,M11.1.0", 1), 0);  // Daylight saving in April.
  EXPECT_EQ(toLocalTime(-1), 7199999999);
  EXPECT_EQ(toUtc(7199999999), -1);
  EXPECT_EQ(unsetenv("TZ"), 0);
}

// The names of the signals that are held back now.
std::string heldSignals() {
  sigset_t mask;
  EXPECT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &mask), 0);
  std::string held;
  for (int number = 1; number < SIGRTMIN; ++number)
    if (sigismember(&mask, number) == 1) held.append(sigabbrev_np(number)).append(" ");
  return held;
}

TEST(SignalHold, AllButThoseOfTheProcessItself) {
  const std::string all =
      "HUP INT QUIT USR1 USR2 PIPE ALRM TERM STKFLT CONT TSTP TTIN TTOU URG XCPU XFSZ VTALRM PROF "
      "WINCH POLL PWR ";
  {
    const SignalHold outer;
    {
      const SignalRelease release;
      EXPECT_EQ(heldSignals(), "TSTP TTIN TTOU ");
      const SignalHold again;
      EXPECT_EQ(heldSignals(), all);
    }
    EXPECT_EQ(heldSignals(), all);
  }
  const SignalRelease without_a_hold;
  EXPECT_EQ(heldSignals(), "");
}

}  // namespace
}  // namespace tunadm
