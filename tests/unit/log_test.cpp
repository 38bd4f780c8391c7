#include <errno.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fundkit/BasicLog.h"
#include "fundkit/LineReader.h"
#include "fundkit/LogLevel.h"
#include "service/LogExtract.h"
#include "tests/support/TempDirectory.h"

namespace tunadm {
namespace {

using namespace std::string_view_literals;

TEST(LogLevel, ParseAndNames) {
  const std::pair<LogLevel, std::vector<std::string_view>> cases[] = {
      {kLogTrace, {"T~", "t~", "trace"}},
      {kLogDebug, {"D~", "Debug x", "d~x"}},
      {kLogInfo, {"I~", "", " \x80 ", "WARNINGS", "D-", "[F~]", "error\ttext", "fata"}},
      {kLogNotice, {"N~", "NOTICE]"}},
      {kLogWarning, {"W~", "  w~ ", "warn", "WARNING"}},
      {kLogError, {"E~", "E~text", "err", "[error] x", "\xc3 error \xff", "err\0ror"sv}},
      {kLogFatal, {"F~", "[FATAL]", "panic", "EMERG", "emergency", "critical", "alert"}}};
  for (const auto& [level, texts] : cases) {
    for (const std::string_view text : texts) EXPECT_EQ(parseLevel(text), level) << text;
    EXPECT_EQ(loglevel_shortname(level), texts[0]);
    EXPECT_EQ(parseLevel(loglevel_fullname(level)), level);
  }
  EXPECT_STREQ(loglevel_shortname(kLogUnset), "X~");
}

TEST(Logger, Thresholds) {
  Logger& plain = getLogger("plain");
  Logger& own = getLogger("own");
  own.setThreshold(kLogError);
  setDefaultThreshold(kLogFatal);
  EXPECT_TRUE(own.enabled(kLogError) && !own.enabled(kLogWarning) && !plain.enabled(kLogError));
  setDefaultThreshold(kLogUnset);
  EXPECT_TRUE(plain.enabled(kLogInfo) && !plain.enabled(kLogDebug));
}

TEST(LogStatement, OneLineOnStandardErrorAndErrnoLeftAlone) {
  testing::internal::CaptureStderr();
  TUNADM_LOG(getLogger("a\nb"), kLogWarning, "m", "f", "could not\rget")
      .detail("%s", "forged\nE~ line\x1b[31m gr\xc3\xbc");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "W~ a?b m f: could not?get; forged?E~ line?[31m gr\xc3\xbc\n");
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
}

using Lines = std::vector<std::string>;

// What reading the whole file forward with fgets gives.
Lines forwardModel(const std::string& path, std::size_t max_lines, LogLevel threshold) {
  Lines lines;
  FILE* const log = fopen(path.c_str(), "r");
  if (log == nullptr) return {"not opened"};
  char buffer[4096];
  while (fgets(buffer, sizeof buffer, log) != nullptr) {
    const std::string_view text = trimGraphic(std::string_view(buffer));
    if (text.empty() || parseLevel(text) < threshold) continue;
    lines.emplace_back(text);
    if (lines.size() > max_lines) lines.erase(lines.begin());
  }
  (void)fclose(log);  // was only read from
  return lines;
}

Lines printed(const LogExtract& extract) {
  Lines lines;
  extract.print([&lines](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

// A log of odd lines: of lengths around those of the pieces and of the reader's own buffer, with
// NUL bytes, levels of every spelling, and perhaps no last line feed.
std::string randomLog(std::mt19937* random) {
  const auto below = [random](std::size_t limit) { return (*random)() % limit; };
  const char* const starts[] = {"",       "E~ x",       "  [error] x", "W~",  "\x80 FATAL",
                                "notice", "info later", "T~ trace",    "\t ", "DEBUGS"};
  const std::size_t lengths[] = {0, 1, 80, 4090, 4094, 4095, 4096, 8190, 12000, 262143, 300000};
  const char* const ends[] = {"\n", "\n", "\r\n", " \n", "\n\n"};
  std::string text;
  for (std::size_t count = below(60); count > 0; --count) {
    text += starts[below(std::size(starts))];
    const std::size_t length = lengths[below(below(8) == 0 ? std::size(lengths) : 3)];
    text.append(length, below(4) == 0 ? ' ' : 'x');
    if (below(6) == 0 && !text.empty()) text[below(text.size())] = '\0';
    text += ends[below(std::size(ends))];
  }
  if (below(3) == 0) text += "FATAL without an end";
  return text;
}

TEST(LogExtract, SameAsReadingForward) {
  const TempDirectory temp;
  std::mt19937 random(20);
  for (int round = 0; round < 300; ++round) {
    const std::string path = temp.write("hip.log", randomLog(&random));
    const LogLevel threshold = &kLogLevels[random() % 7];
    const int max_lines = static_cast<int>(random() % 3 == 0 ? 100000 : random() % 20);
    LogExtract extract;
    ASSERT_EQ(extract.find(path, max_lines, threshold).code(), 1);
    ASSERT_EQ(printed(extract), forwardModel(path, static_cast<std::size_t>(max_lines), threshold))
        << round;
  }
  for (const char* path : {"", "missing", "."}) {
    LogExtract extract;
    EXPECT_EQ(extract.find(temp.at(path), 50, kLogInfo).code(), 2);
    EXPECT_EQ(printed(extract), (Lines{"no logfile available for this profile"}));
  }
}

}  // namespace
}  // namespace tunadm
