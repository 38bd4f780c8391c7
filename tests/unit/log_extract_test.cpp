#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fundkit/LineReader.h"
#include "service/LogExtract.h"
#include "service/SupportBundle.h"
#include "tests/support/TempDirectory.h"

namespace tunadm {
namespace {

using Lines = std::vector<std::string>;

Lines printed(const LogExtract& extract) {
  Lines lines;
  extract.print([&lines](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

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
    if (below(5) == 0) text += "E~ tail of a line";
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
}

TEST(LogExtract, NoLog) {
  const TempDirectory temp;
  for (const char* path : {"", "missing", "."}) {
    LogExtract extract;
    EXPECT_EQ(extract.find(temp.at(path), 50, kLogInfo).code(), 2);
    EXPECT_EQ(printed(extract), (Lines{"no logfile available for this profile"}));
  }
}

TEST(SupportBundle, ShellResults) {
  const std::pair<int, unsigned> cases[] = {{0, 0x00000001},        {-1, 0x14000013},
                                            {127 << 8, 0x14000013}, {126 << 8, 0x12000001},
                                            {1 << 8, 0x12000001},   {15, 0x12000001}};
  for (const auto& [result, code] : cases) {
    EXPECT_EQ(static_cast<unsigned>(bundleStatus(result).code()), code) << result;
  }
}

}  // namespace
}  // namespace tunadm
