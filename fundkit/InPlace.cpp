#include "fundkit/InPlace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "fundkit/DescriptorIo.h"

namespace tunadm {
namespace {

constexpr std::size_t kLargestPutBack = std::size_t{64} << 20;

// The end is cut off only after the new content has been written: on a full disk, and after a kill,
// a file that was emptied first would stay empty.
bool writeContent(int file, std::string_view text, Flush flush) {
  if (lseek(file, 0, SEEK_SET) != 0 && errno != ESPIPE) return false;
  if (!writeAll(file, text)) return false;
  // EINVAL: not a regular file, so there is no length to cut.
  if (!cutFile(file, static_cast<off_t>(text.size())) && errno != EINVAL) return false;
  return flush == Flush::kNo || syncToDisk(file);
}

}  // namespace

ScopedFd openInPlace(const std::string& path, int flags, mode_t mode) {
  // For reading as well where that is allowed, so that the old content can be put back.
  ScopedFd file = openDescriptor(path, O_RDWR | flags, mode);
  if (!file.valid() && errno == EACCES) file = openDescriptor(path, O_WRONLY | flags, mode);
  struct stat found {};
  if (file.valid() && (fstat(file.get(), &found) != 0 || S_ISFIFO(found.st_mode))) {
    if (S_ISFIFO(found.st_mode)) errno = 0;
    (void)file.close();  // nothing was written
  }
  return file;
}

bool replaceContent(int file, std::string_view text, Flush flush) {
  struct stat found {};
  std::string old;
  const bool may_put_back =
      fstat(file, &found) == 0 && S_ISREG(found.st_mode) && readAll(file, kLargestPutBack, &old);
  if (writeContent(file, text, flush)) return true;
  const int error = errno;
  if (may_put_back) (void)writeContent(file, old, flush);  // the failure is reported anyway
  errno = error;
  return false;
}

}  // namespace tunadm
