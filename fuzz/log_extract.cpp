// The log read from its end against the same read from its start. Two bytes say how, and how long.
#include <cctype>

#include "fuzz/Fuzz.h"
#include "service/LogExtract.h"

namespace tunadm {

// The place of a line's level among the levels. Shares nothing with the reader of levels.
static int levelOf(const std::string& line) {
  static const struct {
    const char* name;
    int level;
  } kNames[] = {{"TRACE", 0},     {"DEBUG", 1},    {"INFO", 2},  {"NOTICE", 3}, {"WARNING", 4},
                {"WARN", 4},      {"ERROR", 5},    {"ERR", 5},   {"FATAL", 6},  {"PANIC", 6},
                {"EMERGENCY", 6}, {"CRITICAL", 6}, {"ALERT", 6}, {"EMERG", 6}};
  std::string upper;
  for (const char byte : line) upper += static_cast<char>(std::toupper(byte & 0xff));
  const std::size_t letter = std::string_view("TDINWEF").find(upper[0]);
  if (upper.substr(1, 1) == "~" && letter != std::string_view::npos)
    return static_cast<int>(letter);
  const std::size_t start = upper[0] == '[' ? 1 : 0;
  const std::string name = upper.substr(start, upper.find_first_of(" ]", start) - start);
  for (const auto& row : kNames)
    if (name == row.name) return row.level;
  return 2;
}

void checkInput(const std::string& text) {
  if (text.size() < 2) return;
  const int threshold = (text[0] & 127) % 7;
  const int wanted = text[0] < 0 ? 100000 : text[0] / 7;
  std::string log = text.substr(2);
  // Up to twice the part of the file that is in memory at once.
  if (text[1] > 64) log += std::string(static_cast<std::size_t>(text[1] % 64) * 8192, 'x') + log;
  std::vector<std::string> expected;
  for (const std::string& raw : fgetsLines(log, 4096)) {
    const std::string line(trimmed(raw.c_str()));
    if (!line.empty() && levelOf(line) >= threshold) expected.push_back(line);
  }
  if (std::ssize(expected) > wanted) expected.erase(expected.begin(), expected.end() - wanted);
  std::string lines;
  std::string runs;
  LogExtract extract;
  const Status read = extract.find(fileWith(log), wanted, &kLogLevels[threshold]);
  extract.forEachLine([&lines](std::string_view line) { lines.append(line).append("\n"); });
  extract.forEachRun([&runs](std::string_view run) { runs.append(run).append("\n"); });
  std::string wanted_lines;
  for (const std::string& line : expected) wanted_lines += line + "\n";
  require(read.code() == kSuccess, "the log can be read");
  require(lines == wanted_lines, "the last lines of the level");
  require(runs == lines, "runs of the same lines");
}

}  // namespace tunadm
