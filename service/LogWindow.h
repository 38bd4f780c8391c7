// A part of a log in memory.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "fundkit/ScopedFd.h"

namespace tunadm {

// Holds one range of a log's bytes at a time. What has been cut off the log is not there. The views
// that are given out are good until the next load.
class LogWindow {
 public:
  static constexpr off_t kSize = off_t{256} * 1024;

  explicit LogWindow(ScopedFd log) : log_(std::move(log)) {}

  // Loads the bytes from `start` to `end`, kSize at most.
  void load(off_t start, off_t end);

  // Loads the bytes before `end`, as many as fit.
  void loadBefore(off_t end);

  // True when a read has failed in any load.
  bool failed() const { return failed_; }

  off_t start() const { return start_; }
  off_t end() const { return start_ + static_cast<off_t>(length_); }

  // The bytes from `from` to `to`, both inside.
  std::string_view bytes(off_t from, off_t to) const;

  // The place behind the last line feed before `end`, or -1.
  off_t behindLastFeed(off_t end) const;

 private:
  ScopedFd log_;
  std::string buffer_;
  off_t start_ = 0;
  std::size_t length_ = 0;
  bool failed_ = false;
};

}  // namespace tunadm
