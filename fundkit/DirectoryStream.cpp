#include "fundkit/DirectoryStream.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string_view>

namespace tunadm {

DirectoryStream::DirectoryStream(ScopedFd directory)
    : stream_(directory.valid() ? fdopendir(directory.get()) : nullptr) {
  if (stream_ != nullptr) (void)directory.take();  // the stream closes it from now on
}

const dirent* DirectoryStream::next() {
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(stream_.get());
    if (entry == nullptr) {
      failed_ = errno != 0;
      return nullptr;
    }
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") return entry;
  }
}

unsigned char DirectoryStream::kindOf(const dirent& entry) const {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type;
  // Some file systems do not tell the kind.
  struct stat found {};
  if (fstatat(descriptor(), entry.d_name, &found, AT_SYMLINK_NOFOLLOW) != 0) return DT_UNKNOWN;
  return static_cast<unsigned char>(IFTODT(found.st_mode));
}

}  // namespace tunadm
