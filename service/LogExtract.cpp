#include "service/LogExtract.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"
#include "fundkit/ScopedFd.h"
#include "service/LogFile.h"
#include "service/LogSearch.h"

namespace tunadm {
namespace {

constexpr int kMostLines = 100000;

std::size_t wantedLines(int max_lines) {
  return static_cast<std::size_t>(max_lines < 0 ? kDefaultLogLines
                                                : std::min(max_lines, kMostLines));
}

}  // namespace

Status LogExtract::find(const std::string& path, int max_lines, LogLevel threshold) {
  ScopedFd opened = openRegularFile(path);
  if (!opened.valid()) {
    if (isRegularFile(path)) return Status(kOpenFailed);
    notice_ = "no logfile available for this profile";
    return Status(kSuccessWithWarnings);
  }
  LogFile log(std::move(opened));
  const bool complete =
      log.mark() && LogSearch(log, wantedLines(max_lines), threshold, &found_).run();
  return Status(complete ? kSuccess : kReadFailed);
}

void LogExtract::forEachLine(const LineReceiver& out) const {
  if (!notice_.empty()) out(notice_);
  found_.forEachLine(out);
}

void LogExtract::forEachRun(const LineReceiver& out) const {
  if (!notice_.empty()) out(notice_);
  found_.forEachRun(out);
}

}  // namespace tunadm
