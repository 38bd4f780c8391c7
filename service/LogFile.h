// Reading a log that its daemon goes on writing.
#pragma once

#include <sys/types.h>

#include <span>
#include <utility>

#include "fundkit/ScopedFd.h"

namespace tunadm {

// An open log up to the end that it had when it was marked. What is appended afterwards is not
// looked at.
class LogFile {
 public:
  explicit LogFile(ScopedFd log) : log_(std::move(log)) {}

  // Notes the present size. False on failure.
  [[nodiscard]] bool mark();

  off_t size() const { return size_; }

  // Fills `bytes` from the offset `start`, all below size(). False on failure, and when the log has
  // been cut.
  [[nodiscard]] bool read(off_t start, std::span<char> bytes) const;

 private:
  ScopedFd log_;
  off_t size_ = 0;
};

}  // namespace tunadm
