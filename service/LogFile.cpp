#include "service/LogFile.h"

#include <sys/stat.h>

#include <cstddef>

#include "fundkit/DescriptorIo.h"

namespace tunadm {

bool LogFile::mark() {
  struct stat now {};
  if (fstat(log_.get(), &now) != 0) return false;
  size_ = now.st_size;
  return true;
}

bool LogFile::read(off_t start, std::span<char> bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = readAt(log_.get(), start, bytes.data(), bytes.size());
    if (count <= 0) return false;
    start += count;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace tunadm
