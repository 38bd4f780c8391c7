#include "fundkit/DescriptorIo.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace tunadm
