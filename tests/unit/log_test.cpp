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

TEST(LogLevel, ParseAndNames) {
  const struct {
    LogLevel level;
    const char* short_name;
    int priority;
    std::vector<std::string_view> texts;
  } cases[] = {
      {kLogTrace, "T~", 7, {"t~", "trace"}},
      {kLogDebug, "D~", 7, {"Debug x", "d~x"}},
      {kLogInfo, "I~", 6, {"", " \x80 ", "WARNINGS", "D-", "[F~]", "error\ttext", "fata"}},
      {kLogNotice, "N~", 5, {"NOTICE]"}},
      {kLogWarning, "W~", 4, {"  w~ ", "warn", "WARNING"}},
      {kLogError, "E~", 3, {"E~text", "err", "[error] x", "\xc3 error \xff", "err\0ror"sv}},
      {kLogFatal, "F~", 2, {"[FATAL]", "panic", "EMERG", "emergency", "critical", "alert"}}};
  for (const auto& c : cases) {
    for (const std::string_view text : c.texts) EXPECT_EQ(parseLevel(text), c.level) << text;
    EXPECT_STREQ(loglevel_shortname(c.level), c.short_name);
    EXPECT_EQ(loglevel_to_syslog(c.level), c.priority);
    EXPECT_EQ(parseLevel(loglevel_fullname(c.level)), c.level);
  }
  EXPECT_STREQ(loglevel_shortname(kLogUnset), "X~");
  EXPECT_STREQ(loglevel_fullname(kLogFatal + 1), "<log level>");
}

TEST(Logger, Thresholds) {
  getLogger("own").setThreshold(kLogError);
  const struct {
    LogLevel default_threshold, level;
    bool plain, own;
  } cases[] = {{kLogDebug, kLogUnset, true, false},
               {kLogFatal, kLogError, false, true},
               {kLogUnset, kLogDebug, false, false},
               {kLogUnset, kLogInfo, true, false}};
  for (const auto& c : cases) {
    setDefaultThreshold(c.default_threshold);
    EXPECT_EQ(getLogger("plain").enabled(c.level), c.plain);
    EXPECT_EQ(getLogger("own").enabled(c.level), c.own);
  }
}

TEST(LogStatement, OneLineOnStandardError) {
  testing::internal::CaptureStderr();
  TUNADM_LOG(getLogger("a\nb"), kLogWarning, "m", "f", "could not\rget")
      .detail("%s", "forged\nE~ line\x1b[31m gr\xc3\xbc");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "W~ a?b m f: could not?get; forged?E~ line?[31m gr\xc3\xbc\n");
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

TEST(AssertFailure, WritesLogsAndDies) {
  EXPECT_EXIT(assertFailure("f", 1, std::string(999, 'm').c_str()), testing::KilledBySignal(SIGILL),
              "^assert error, f line 1, \"" + std::string(998, 'm') + "E~ fundkit");
  EXPECT_EXIT(assertFailure(nullptr, 0, nullptr), testing::KilledBySignal(SIGILL),
              "^assert error, <filename unknown> line 0, \"<no message>\" \n");
}

}  // namespace
}  // namespace tunadm
