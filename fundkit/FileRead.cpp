// The functions of FileUtils.h that read files.
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"
#include "fundkit/SystemFailure.h"

namespace tunadm {
namespace {

constexpr std::size_t kReadChunk = 4096;
constexpr std::size_t kLargestLine = std::size_t{1} << 20;
constexpr std::size_t kLargestFile = std::size_t{64} << 20;
constexpr std::string_view kLineEnds("\n\0", 2);

// What an open fails with where there is nothing that could be a regular file.
bool meansNothing(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG ||
         error == ENXIO || error == ENODEV;
}

// False, with errno 0, for what is not a regular file.
bool isRegular(int file) {
  struct stat found {};
  if (fstat(file, &found) != 0) return false;
  if (S_ISREG(found.st_mode)) return true;
  errno = 0;
  return false;
}

// False on failure; errno tells why, 0 for what is not a regular file. That is looked at only where
// reading makes doubtful what the file is: most lines cost one call of read.
bool readLine(int file, std::string* line) {
  char chunk[kReadChunk];
  while (line->size() <= kLargestLine) {
    const ssize_t count = readSome(file, chunk, sizeof(chunk));
    if (count < 0) {
      const int error = errno;
      if (isRegular(file)) errno = error;
      return false;
    }
    const std::string_view got(chunk, static_cast<std::size_t>(count));
    const bool doubtful = got.size() == sizeof(chunk) || (got.empty() && line->empty());
    if (doubtful && line->size() < sizeof(chunk) && !isRegular(file)) return false;
    const std::size_t end = std::min(got.find_first_of(kLineEnds), got.size());
    line->append(got.substr(0, end));
    if ((end < got.size() || got.empty()) && line->size() <= kLargestLine) return true;
  }
  errno = EFBIG;
  return false;
}

}  // namespace

Status readFile(const std::string& path, std::string* content) {
  content->clear();
  if (path.empty()) return Status(kInvalidArgument);
  const ScopedFd file = openRegularFile(path);
  if (!file.valid()) return systemFailure(errno == 0 ? kReadFailed : kOpenFailed, "open", path);
  if (readAll(file.get(), kLargestFile, content)) return Status(kSuccess);
  content->clear();
  return systemFailure(kReadFailed, "read", path);
}

LineRead readFirstLine(int directory, const char* path, std::string* line) {
  line->clear();
  ScopedFd file = openDescriptor(directory, path, O_RDONLY);
  if (!file.valid()) return meansNothing(errno) ? LineRead::kNothing : LineRead::kError;
  if (readLine(file.get(), line)) return LineRead::kRead;
  line->clear();
  const int error = errno;
  (void)file.close();  // only read: nothing to lose
  errno = error;
  return error == 0 ? LineRead::kNothing : LineRead::kError;
}

LineRead readFirstLine(const std::string& path, std::string* line) {
  return readFirstLine(AT_FDCWD, path.c_str(), line);
}

}  // namespace tunadm
