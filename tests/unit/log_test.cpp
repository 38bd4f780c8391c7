#include <errno.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <string_view>
#include <vector>

#include "fundkit/BasicLog.h"
#include "fundkit/LogLevel.h"

namespace tunadm {
namespace {

using namespace std::string_view_literals;

TEST(LogLevel, Table) {
  const struct {
    LogLevel level;
    const char *short_name, *full_name;
    int priority;
  } cases[] = {{kLogTrace, "T~", "TRACE", 7},     {kLogDebug, "D~", "DEBUG", 7},
               {kLogInfo, "I~", "INFO", 6},       {kLogNotice, "N~", "NOTICE", 5},
               {kLogWarning, "W~", "WARNING", 4}, {kLogError, "E~", "ERROR", 3},
               {kLogFatal, "F~", "FATAL", 2}};
  LogLevel previous = nullptr;
  for (const auto& c : cases) {
    EXPECT_TRUE(isValidLevel(c.level));
    EXPECT_EQ(c.level->marker, 12345U);
    EXPECT_STREQ(loglevel_shortname(c.level), c.short_name);
    EXPECT_STREQ(loglevel_fullname(c.level), c.full_name);
    EXPECT_EQ(loglevel_to_syslog(c.level), c.priority);
    EXPECT_LT(previous, c.level);
    previous = c.level;
  }
}

TEST(LogLevel, InvalidValuesAreReportedOncePerCall) {
  const LogLevelDescriptor stranger = kLogLevels[0];
  for (const LogLevel level : {kLogUnset, &stranger, kLogFatal + 1}) {
    EXPECT_FALSE(isValidLevel(level));
    testing::internal::CaptureStderr();
    EXPECT_STREQ(loglevel_shortname(level), "X~");
    EXPECT_STREQ(loglevel_fullname(level), "<log level>");
    EXPECT_EQ(loglevel_to_syslog(level), 6);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "E~ fundkit BasicLog loglevel_shortname: invalid log level\n"
              "E~ fundkit BasicLog loglevel_fullname: invalid log level\n"
              "E~ fundkit BasicLog loglevel_to_syslog: invalid log level\n");
  }
}

TEST(LogLevel, Parse) {
  const struct {
    LogLevel level;
    std::vector<std::string_view> texts;
  } cases[] = {
      {kLogTrace, {"t~", "trace"}},
      {kLogDebug, {"Debug x", "d~x"}},
      {kLogInfo,
       {"", " \t\x7f\x80 ", "info message", "WARNINGS", "W", "D-", "[F~]", "[[FATAL]", "[ FATAL]",
        "emergencies", "error\xff.", "error\ttext", "error: x", "\0error"sv, "2024 error", "fata"}},
      {kLogNotice, {"NOTICE]"}},
      {kLogWarning, {"  w~ ", "warn", "WARNING"}},
      {kLogError,
       {"E~text", "err", "[error] x", "\xc3\xa9 error \xff", "error\xff\t", "error\t", "err\0ror"sv,
        "error\n\0x"sv}},
      {kLogFatal, {"[FATAL]", "panic", "EMERG", "emergency", "critical", "alert"}}};
  for (const auto& c : cases) {
    for (const std::string_view text : c.texts) EXPECT_EQ(parseLevel(text), c.level) << text;
  }
  EXPECT_EQ(parseLevel(static_cast<const char*>(nullptr)), kLogInfo);
}

TEST(Logger, Thresholds) {
  Logger& plain = getLogger("thresholds");
  Logger& own = getLogger("thresholds.own");
  EXPECT_EQ(&getLogger("thresholds"), &plain);
  EXPECT_EQ(&getLogger("fundkit"), &fundkitLogger());
  own.setThreshold(kLogError);
  const struct {
    LogLevel default_threshold, level;
    bool plain_enabled, own_enabled;
  } cases[] = {{kLogDebug, kLogTrace, false, false}, {kLogDebug, kLogDebug, true, false},
               {kLogDebug, kLogUnset, true, false},  {kLogNotice, kLogUnset, false, false},
               {kLogFatal, kLogError, false, true},  {kLogUnset, kLogDebug, false, false},
               {kLogUnset, kLogInfo, true, false},   {kLogUnset, kLogFatal, true, true}};
  for (const auto& c : cases) {
    setDefaultThreshold(c.default_threshold);
    EXPECT_EQ(plain.enabled(c.level), c.plain_enabled);
    EXPECT_EQ(own.enabled(c.level), c.own_enabled);
    EXPECT_EQ(getLogger("made later").enabled(c.level), c.plain_enabled);
  }
  own.setThreshold(kLogUnset);
  EXPECT_TRUE(own.enabled(kLogInfo));
}

TEST(LogStatement, OneLineOnStandardError) {
  testing::internal::CaptureStderr();
  TUNADM_LOG(getLogger("a\nb"), kLogWarning, sourceFileName("/x/ConfigControl.cpp"),
             "read_networks", "could not\rgetifaddrs")
      .detail("status = %d", -3)
      .detail("%s", "forged\nE~ line\x1b[31m\x7f gr\xc3\xbc\xc3\x9f");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "W~ a?b ConfigControl.cpp read_networks: could not?getifaddrs; status = -3; "
            "forged?E~ line?[31m? gr\xc3\xbc\xc3\x9f\n");
}

TEST(LogStatement, LeavesErrnoAloneWhenItCannotWrite) {
  const int standard_error = dup(STDERR_FILENO);
  close(STDERR_FILENO);
  errno = ENOENT;
  TUNADM_LOG(fundkitLogger(), kLogFatal, "m", "f", "text");
  const int after = errno;
  dup2(standard_error, STDERR_FILENO);
  close(standard_error);
  EXPECT_EQ(after, ENOENT);
}

TEST(LogStatement, EndsOnceAndThenHoldsNothing) {
  testing::internal::CaptureStderr();
  {
    LogStatement statement(fundkitLogger(), "other", kLogInfo, "text", "m", "f");
    statement.detail("%s", std::string(5000, 'x').c_str()).end();
    statement.detail("%s", "too late").end();
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "I~ other m f: text; " + std::string(5000, 'x') + "\n");
}

TEST(LogStatement, DisabledLevelEvaluatesNothing) {
  int evaluated = 0;
  const auto text = [&evaluated] { return ++evaluated == 0 ? "" : "text"; };
  testing::internal::CaptureStderr();
  TUNADM_LOG(fundkitLogger(), kLogDebug, "m", "f", text()).detail("%s", text());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(evaluated, 0);
}

TEST(AssertFailure, DefaultWritesLogsAndDies) {
  const auto dies_by_4 = testing::KilledBySignal(4);
  EXPECT_EXIT(assertFailure("a.cpp", 7, "broken"), dies_by_4,
              "^assert error, a.cpp line 7, \"broken\" \n"
              "E~ fundkit BasicLog defaultAssertFailure: assert error, a.cpp line 7, \"broken\" .");
  EXPECT_EXIT(assertFailure(nullptr, 0, nullptr), dies_by_4,
              "^assert error, <filename unknown> line 0, \"<no message>\" \n");
  // Cut to what a buffer of 1024 bytes holds.
  const std::string cut = "assert error, f line 1, \"" + std::string(998, 'm');
  EXPECT_EXIT(assertFailure("f", 1, std::string(3000, 'm').c_str()), dies_by_4,
              "^" + cut + "E~ fundkit");
}

int handled_line = 0;

TEST(AssertFailure, InstalledHandlerTakesOver) {
  setAssertHandler(
      [](const char* /*file*/, int line, const char* /*message*/) { handled_line = line; });
  assertFailure("f", 12, "m");
  EXPECT_EQ(handled_line, 12);
  setAssertHandler(nullptr);
  EXPECT_EXIT(assertFailure("f", 1, "m"), testing::KilledBySignal(SIGILL), "assert error");
}

}  // namespace
}  // namespace tunadm
