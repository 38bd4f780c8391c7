#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <string_view>

#include "fundkit/BasicLog.h"
#include "fundkit/LogLevel.h"
#include "service/LogExtract.h"

namespace tunadm {
namespace {

// Further texts are a matter of fuzz/small_texts.cpp.
TEST(LogLevel, NamesAndPriorities) {
  std::string names;
  for (const LogLevelDescriptor& level : kLogLevels) {
    names += std::string(loglevel_shortname(&level)) + loglevel_fullname(&level);
    names += std::to_string(loglevel_to_syslog(&level)) + " ";
    EXPECT_EQ(parseLevel(loglevel_fullname(&level)), &level);
  }
  EXPECT_EQ(names, "T~TRACE7 D~DEBUG7 I~INFO6 N~NOTICE5 W~WARNING4 E~ERROR3 F~FATAL2 ");
  const char* const none = nullptr;
  for (const char* text : {"err\ttext", "", "WARNINGS", "[F~]", none})
    EXPECT_EQ(parseLevel(text), kLogInfo);
  for (const char* text : {"[Fatal] x", "panic", "emergency", "\xc3 ALERT \xff"})
    EXPECT_EQ(parseLevel(text), kLogFatal);
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
  EXPECT_EQ(&getLogger("own"), &own);
  EXPECT_EQ(enabledFrom(own), "INFO unset");
  own.setThreshold(kLogError);
  setDefaultThreshold(kLogDebug);
  EXPECT_EQ(enabledFrom(own), "ERROR");
  EXPECT_EQ(enabledFrom(other), "DEBUG unset");
  EXPECT_EQ(enabledFrom(getLogger("made later")), "DEBUG unset");
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

TEST(LogStatement, OneLineOnStandardError) {
  testing::internal::CaptureStderr();
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
  const char* const cases[][2] = {
      {"\x01 \x1f\x7f~", "? ??~"},
      {"\xc2\x9b \xc2\xa0 \x9b \xa0 \x80", "? \xc2\xa0 ? \xa0 ?"},         // CSI, in both ways
      {"\xe2\x82\x9b \xf0\x9f\x98\x80", "\xe2\x82\x9b \xf0\x9f\x98\x80"},  // within characters
      {"\xe2\x9b \xc0\x9b \xf5\x80\x80\x80", "\xe2? \xc0? \xf5???"},       // no characters
      {"\xe0\x9f\xbf \xed\xa0\x80 \xf0\x8f\xbf\xbf \xf4\x90\x80\x80",
       "\xe0?\xbf \xed\xa0? \xf0?\xbf\xbf \xf4???"},
      {"\xe1\x80", "\xe1?"}};
  for (const auto& [text, shown] : cases) {
    testing::internal::CaptureStderr();
    TUNADM_LOG(programLogger(), kLogFatal, "m", "f", text);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              std::string("F~ tunadm m f: ") + shown + "\n");
  }
}

TEST(LogStatement, DisabledOnesCostNothing) {
  testing::internal::CaptureStderr();
  int evaluated = 0;
  TUNADM_LOG(programLogger(), kLogDebug, "m", "f", "x").detail("%d", ++evaluated);
  EXPECT_EQ(evaluated, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
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

// What is found in a log is a matter of fuzz/log_extract.cpp.
TEST(LogExtract, NoLogfile) {
  for (const char* path : {"", "/missing", "/"}) {
    LogExtract extract;
    EXPECT_EQ(extract.find(path, 50, kLogInfo).code(), 2);
    std::string printed;
    extract.forEachLine([&printed](std::string_view line) { printed += line; });
    EXPECT_EQ(printed, "no logfile available for this profile");
  }
}

}  // namespace
}  // namespace tunadm
