// Sole owner of a file descriptor.
#pragma once

#include <errno.h>
#include <unistd.h>

#include <utility>

namespace tunadm {

class ScopedFd {
 public:
  explicit ScopedFd(int descriptor = -1) : descriptor_(descriptor) {}
  // A failed close is lost here: whoever wrote to the descriptor calls close() before.
  ~ScopedFd() { (void)close(); }
  ScopedFd(ScopedFd&& other) noexcept : descriptor_(other.take()) {}
  ScopedFd& operator=(ScopedFd&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ScopedFd(const ScopedFd&) = delete;
  ScopedFd& operator=(const ScopedFd&) = delete;

  int get() const { return descriptor_; }
  bool valid() const { return descriptor_ >= 0; }

  // Gives the descriptor away; the caller closes it.
  int take() { return std::exchange(descriptor_, -1); }

  // Closes the descriptor, if there is one. Gives 0 or the errno of close. EINTR is neither a
  // failure nor a reason to try again: Linux has released the number by then (close(2)), and
  // someone else may own it already.
  int close() {
    if (!valid()) return 0;
    return ::close(take()) == 0 || errno == EINTR ? 0 : errno;
  }

 private:
  int descriptor_;
};

}  // namespace tunadm
