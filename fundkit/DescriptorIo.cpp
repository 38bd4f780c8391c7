#include "fundkit/DescriptorIo.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <ctime>

namespace tunadm {

ScopedFd openDescriptor(int directory, const char* path, int flags, mode_t mode) {
  int descriptor = -1;
  do {
    descriptor = openat(directory, path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode);
  } while (descriptor < 0 && errno == EINTR);
  return ScopedFd(descriptor);
}

ScopedFd openDescriptor(const std::string& path, int flags, mode_t mode) {
  return openDescriptor(AT_FDCWD, path.c_str(), flags, mode);
}

ScopedFd openRegularFile(const std::string& path) {
  ScopedFd file = openDescriptor(path, O_RDONLY);
  struct stat found {};
  if (file.valid() && (fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))) {
    (void)file.close();  // Only read: nothing to lose.
    errno = 0;
  }
  return file;
}

ssize_t readSome(int descriptor, char* buffer, std::size_t size) {
  ssize_t count = -1;
  do {
    count = read(descriptor, buffer, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

ssize_t readAt(int descriptor, off_t offset, char* buffer, std::size_t size) {
  ssize_t count = -1;
  do {
    count = pread(descriptor, buffer, size, offset);
  } while (count < 0 && errno == EINTR);
  return count;
}

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (count < 0 && errno == EAGAIN) {
      pollfd room{descriptor, POLLOUT, 0};
      if (poll(&room, 1, -1) < 0 && errno != EINTR) return false;
    } else if (count == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

bool cutFile(int descriptor, off_t length) {
  int result = -1;
  do {
    result = ftruncate(descriptor, length);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

bool syncToDisk(int descriptor) {
  int result = -1;
  do {
    result = fsync(descriptor);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

bool writeOutput(int descriptor, std::string_view text) {
  // SIGPIPE goes to the thread that writes, so holding it back there is enough, and disturbs
  // neither other threads nor children.
  sigset_t pipe_signal;
  sigset_t before;
  sigset_t pending;
  (void)sigemptyset(&pipe_signal);  // None of these four can fail: the arguments are constants.
  (void)sigaddset(&pipe_signal, SIGPIPE);
  (void)sigpending(&pending);
  (void)pthread_sigmask(SIG_BLOCK, &pipe_signal, &before);
  const bool written = writeAll(descriptor, text);
  const timespec at_once{};
  if (sigismember(&pending, SIGPIPE) == 0) (void)sigtimedwait(&pipe_signal, nullptr, &at_once);
  (void)pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return written;
}

void fillStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    // The lowest free number is taken, so this is the missing one.
    if (fcntl(descriptor, F_GETFD) < 0) (void)open("/dev/null", O_RDWR | O_NOCTTY);  // Best effort.
  }
}

}  // namespace tunadm
