// Sole owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tunadm {

class ScopedFd {
 public:
  explicit ScopedFd(int descriptor = -1) : descriptor_(descriptor) {}
  // A failed close goes unnoticed here: after writing, call close() first.
  ~ScopedFd() { (void)close(); }
  ScopedFd(ScopedFd&& other) noexcept : descriptor_(other.take()) {}
  ScopedFd& operator=(ScopedFd&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ScopedFd(const ScopedFd&) = delete;
  ScopedFd& operator=(const ScopedFd&) = delete;

  int get() const { return descriptor_; }
  [[nodiscard]] bool valid() const { return descriptor_ >= 0; }

  // Hands over the descriptor; the caller closes it.
  [[nodiscard]] int take() { return std::exchange(descriptor_, -1); }

  // Closes the descriptor, if there is one. Returns 0 or the errno of close. EINTR is neither a
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
