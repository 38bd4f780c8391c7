// The last lines of the daemon's log.
#pragma once

#include <string>

#include "core/Status.h"
#include "core/TextLines.h"
#include "fundkit/LogLevel.h"
#include "service/LogLines.h"

namespace tunadm {

// How many lines are found unless the caller says otherwise.
inline constexpr int kDefaultLogLines = 50;

// Finds the last lines of a log and hands them out in the order of the file.
class LogExtract {
 public:
  // Finds the last `max_lines` lines of the log at `path` whose level is at or above `threshold`.
  // They are trimmed to graphic bytes. Empty lines do not count, and a line of 4,096 bytes or more
  // counts as several, of 4,095 bytes each. A negative `max_lines` stands for kDefaultLogLines,
  // and 100,000 lines are the most; 0 asks for nothing, which succeeds.
  //
  // The log is read from its end, as far as the answer needs, and only what was there at the start.
  // All lines are of one content of the log: when it is cut meanwhile, it is searched anew. The
  // memory for the answer is at most twice its size and 2 MiB.
  //
  // Without a regular file at `path` there is one line that says so, and the status is
  // kSuccessWithWarnings. Errors: kOpenFailed; kReadFailed, also when memory does not suffice, and
  // when each of twenty searches found the log cut. For one call only.
  Status find(const std::string& path, int max_lines, LogLevel threshold);

  // Hands out the lines one by one.
  void forEachLine(const LineReceiver& out) const;

  // The same for long runs of lines, with a line feed between each two: a call for some thousand.
  void forEachRun(const LineReceiver& out) const;

 private:
  LogLines found_;
  std::string notice_;  // the line that says that there is no log
};

}  // namespace tunadm
