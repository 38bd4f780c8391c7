#include "fundkit/DescriptorIo.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <ctime>

#include "fundkit/TimeUtils.h"

namespace tunadm {
namespace {

constexpr Duration kLeaseLookInterval = 10 * kMillisecond;
constexpr Duration kLeaseMargin = 2 * kSecond;
constexpr std::size_t kReadChunk = 16384;
constexpr int kUsualLeaseBreakTime = 45;  // seconds

int openOnce(int directory, const char* path, int flags, mode_t mode) {
  int descriptor = -1;
  do {
    descriptor = openat(directory, path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

// How long the kernel lets the holder of a lease keep others waiting, and a little longer.
Duration longestLease() {
  int seconds = kUsualLeaseBreakTime;
  char text[16];
  const ScopedFd file(openOnce(AT_FDCWD, "/proc/sys/fs/lease-break-time", O_RDONLY, 0));
  const ssize_t size = readSome(file.get(), text, sizeof(text));
  if (size > 0) (void)std::from_chars(text, text + size, seconds);  // unchanged if no number
  return seconds * kSecond + kLeaseMargin;
}

}  // namespace

ScopedFd openDescriptor(int directory, const char* path, int flags, mode_t mode) {
  int descriptor = openOnce(directory, path, flags, mode);
  if (descriptor >= 0 || errno != EWOULDBLOCK) return ScopedFd(descriptor);
  // The first attempt has told the holder of the lease to let go. O_NONBLOCK, needed for FIFOs,
  // keeps open itself from waiting for that.
  for (const TimePoint end = monotonicTime() + longestLease(); monotonicTime() < end;) {
    poll(nullptr, 0, static_cast<int>(kLeaseLookInterval / kMillisecond));
    descriptor = openOnce(directory, path, flags, mode);
    if (descriptor >= 0 || errno != EWOULDBLOCK) break;
  }
  return ScopedFd(descriptor);
}

ScopedFd openDescriptor(const std::string& path, int flags, mode_t mode) {
  return openDescriptor(AT_FDCWD, path.c_str(), flags, mode);
}

ScopedFd openRegularFile(const std::string& path) {
  ScopedFd file = openDescriptor(path, O_RDONLY);
  struct stat found {};
  if (file.valid() && (fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))) {
    (void)file.close();  // only read: nothing to lose
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

bool readAll(int descriptor, std::size_t largest, std::string* text) {
  char chunk[kReadChunk];
  while (text->size() <= largest) {
    const ssize_t count = readSome(descriptor, chunk, sizeof(chunk));
    if (count <= 0) return count == 0;
    text->append(chunk, static_cast<std::size_t>(count));
  }
  errno = EFBIG;
  return false;
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

bool syncFileSystem(int descriptor) {
  int result = -1;
  do {
    result = syncfs(descriptor);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

bool writeOutput(int descriptor, std::string_view text) {
  // SIGPIPE goes to the thread that writes, so holding it back there is enough, and disturbs
  // neither other threads nor children.
  sigset_t pipe_signal;
  sigset_t before;
  sigset_t pending;
  sigemptyset(&pipe_signal);  // none of these four can fail: the arguments are constants
  sigaddset(&pipe_signal, SIGPIPE);
  sigpending(&pending);
  pthread_sigmask(SIG_BLOCK, &pipe_signal, &before);
  const bool written = writeAll(descriptor, text);
  const int error = errno;
  const timespec at_once{};
  if (sigismember(&pending, SIGPIPE) == 0) sigtimedwait(&pipe_signal, nullptr, &at_once);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  errno = error;
  return written;
}

void fillStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    // The lowest free number is taken, so this is the missing one.
    if (fcntl(descriptor, F_GETFD) < 0) (void)open("/dev/null", O_RDWR | O_NOCTTY);  // best effort
  }
}

}  // namespace tunadm
