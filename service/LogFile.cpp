#include "service/LogFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "fundkit/DescriptorIo.h"

namespace tunadm {
namespace {

// Enough for several lines, so that their times differ from those of any other content.
constexpr off_t kLastBytes = 1024;

}  // namespace

bool LogFile::mark() {
  struct stat now {};
  if (fstat(log_.get(), &now) != 0) return false;
  size_ = now.st_size;
  return readLastBytes(&last_bytes_);
}

bool LogFile::isAsMarked() const {
  std::string bytes;
  if (!readLastBytes(&bytes)) return false;
  const bool same = bytes == last_bytes_;
  if (!same) errno = ESTALE;
  return same;
}

bool LogFile::read(off_t start, std::span<char> bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = readAt(log_.get(), start, bytes.data(), bytes.size());
    if (count == 0) errno = ESTALE;
    if (count <= 0) return false;
    start += count;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

bool LogFile::readLastBytes(std::string* bytes) const {
  const off_t length = std::min(size_, kLastBytes);
  bytes->resize(static_cast<std::size_t>(length));
  return read(size_ - length, *bytes);
}

}  // namespace tunadm
