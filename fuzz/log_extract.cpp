// The log read from its end against the same read from its start. Two bytes say how, and how long.
// Levels as such are a matter of small_texts.cpp.

#include "fuzz/Fuzz.h"
#include "service/LogExtract.h"

namespace tunadm {

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
    if (!line.empty() && parseLevel(line) >= &kLogLevels[threshold]) expected.push_back(line);
  }
  if (std::ssize(expected) > wanted) expected.erase(expected.begin(), expected.end() - wanted);
  std::string wanted_runs, runs;
  for (const std::string& line : expected) wanted_runs += line + "\n";
  std::vector<std::string> lines;
  LogExtract extract;
  const Status read = extract.find(fileWith(log), wanted, &kLogLevels[threshold]);
  extract.forEachLine([&lines](std::string_view line) { lines.emplace_back(line); });
  extract.forEachRun([&runs](std::string_view run) { runs.append(run).append("\n"); });
  require(read.code() == kSuccess, "the log can be read");
  require(lines == expected, "the last lines of the level");
  require(runs == wanted_runs, "runs of the same lines");
}

}  // namespace tunadm
