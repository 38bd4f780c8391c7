// Reading a log that its daemon goes on writing.
#pragma once

#include <sys/types.h>

#include <span>
#include <string>
#include <utility>

#include "fundkit/ScopedFd.h"

namespace tunadm {

// An open log up to the end that it had when it was marked. What is appended afterwards is not
// looked at.
class LogFile {
 public:
  explicit LogFile(ScopedFd log) : log_(std::move(log)) {}

  // Notes the present size and last bytes. False on failure, and when the log is cut meanwhile;
  // errno tells why, ESTALE for a cut.
  [[nodiscard]] bool mark();

  // True when nothing that was read since the mark can belong to another content of the log: the
  // bytes before the end are as they were. The size alone does not tell, since a log that was cut
  // may have grown beyond it again. errno as above.
  [[nodiscard]] bool isAsMarked() const;

  off_t size() const { return size_; }

  // Fills `bytes` from the offset `start`, all below size(). False on failure, and when the log has
  // been cut; errno as above.
  [[nodiscard]] bool read(off_t start, std::span<char> bytes) const;

 private:
  [[nodiscard]] bool readLastBytes(std::string* bytes) const;

  ScopedFd log_;
  off_t size_ = 0;
  std::string last_bytes_;
};

}  // namespace tunadm
