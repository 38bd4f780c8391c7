// The raw entries of an open directory.
#pragma once

#include <dirent.h>

#include <memory>

#include "fundkit/ScopedFd.h"

namespace tunadm {

class DirectoryStream {
 public:
  // Takes over an open directory. Not valid() when the descriptor is not that of a directory.
  explicit DirectoryStream(ScopedFd directory);

  [[nodiscard]] bool valid() const { return stream_ != nullptr; }

  // For calls relative to the directory; stays owned by the stream.
  int descriptor() const { return dirfd(stream_.get()); }

  // The next entry other than "." and ".."; good until the next call. Null at the end and on
  // failure.
  const dirent* next();
  [[nodiscard]] bool failed() const { return failed_; }

  // The kind of an entry as DT_..., of a link itself. DT_UNKNOWN only when it cannot be examined.
  unsigned char kindOf(const dirent& entry) const;

 private:
  struct Closer {
    void operator()(DIR* stream) const { (void)closedir(stream); }  // only read: nothing to lose
  };

  std::unique_ptr<DIR, Closer> stream_;
  bool failed_ = false;
};

}  // namespace tunadm
