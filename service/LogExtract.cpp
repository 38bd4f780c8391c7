#include "service/LogExtract.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <new>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"
#include "fundkit/ScopedFd.h"
#include "fundkit/SystemFailure.h"
#include "service/LogFile.h"
#include "service/LogSearch.h"

namespace tunadm {
namespace {

constexpr int kMostLines = 100000;

// A log is cut now and then, so one search more is enough. The bound is for a log that is cut all
// the time.
constexpr int kMostSearches = 20;

std::size_t wantedLines(int max_lines) {
  return static_cast<std::size_t>(max_lines < 0 ? kDefaultLogLines
                                                : std::min(max_lines, kMostLines));
}

// Fails with kOpenFailed, or with kSuccessWithWarnings where there is no regular file.
Status openLog(const std::string& path, ScopedFd* log) {
  // A log that cannot be opened although there is one may have been moved away for a new one
  // just now.
  for (int attempts = 0; attempts < 2; ++attempts) {
    *log = openRegularFile(path);
    if (log->valid()) return Status(kSuccess);
    if (!isRegularFile(path)) return Status(kSuccessWithWarnings);
  }
  return systemFailure(kOpenFailed, "open", path);  // isRegularFile, when true, leaves errno
}

Status search(const std::string& path, LogFile* log, std::size_t max_lines, LogLevel threshold,
              LogLines* found) {
  for (int searches = 0; searches < kMostSearches; ++searches) {
    found->clear();
    if (!log->mark()) continue;
    const bool complete = LogSearch(*log, max_lines, threshold, found).run();
    const int error = errno;
    if (!log->isAsMarked()) continue;
    errno = error;
    return complete ? Status(kSuccess) : systemFailure(kReadFailed, "read", path);
  }
  return systemFailure(kReadFailed, "read", path);
}

}  // namespace

Status LogExtract::find(const std::string& path, int max_lines, LogLevel threshold) {
  ScopedFd log;
  Status result = openLog(path, &log);
  if (result.code() == kSuccessWithWarnings) notice_ = "no logfile available for this profile";
  if (!log.valid()) return result;
  try {
    LogFile file(std::move(log));
    result = search(path, &file, wantedLines(max_lines), threshold, &found_);
  } catch (const std::bad_alloc&) {
    found_.clear();
    errno = ENOMEM;
    result = systemFailure(kReadFailed, "read", path);
  }
  if (!result.ok()) found_.clear();
  return result;
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
