// The functions of FileUtils.h that make changes of directories survive a power cut.
#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"
#include "fundkit/SystemFailure.h"
#include "fundkit/TreeWalk.h"

namespace tunadm {
namespace {

Status flushOpenDirectory(int directory) {
  if (syncToDisk(directory) || errno == EINVAL || errno == EOPNOTSUPP) return Status(kSuccess);
  return systemFailure(kWriteFailed, "fsync", directory, "");
}

class Flusher final : public TreeVisitor {
 public:
  Status visitFile(int parent, const std::string& name) override {
    struct stat found {};
    if (fstatat(parent, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 &&
        !S_ISREG(found.st_mode)) {
      return Status(kSuccess);
    }
    const ScopedFd file = openDescriptor(parent, name.c_str(), O_RDONLY | O_NOFOLLOW);
    if (!file.valid() && errno == ENOENT) return Status(kSuccess);
    if (!file.valid()) return systemFailure(kOpenFailed, "open", parent, name);
    if (syncToDisk(file.get())) return Status(kSuccess);
    return systemFailure(kWriteFailed, "fsync", parent, name);
  }
  Status visitDirectory(int /*parent*/, const std::string& /*name*/, int directory) override {
    return flushOpenDirectory(directory);
  }
};

}  // namespace

Status flushDirectory(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  const ScopedFd directory = openDescriptor(path, O_RDONLY | O_DIRECTORY);
  if (!directory.valid()) return systemFailure(kOpenFailed, "open", path);
  return flushOpenDirectory(directory.get());
}

Status flushTree(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  ScopedFd directory = openDescriptor(path, O_RDONLY | O_DIRECTORY);
  if (!directory.valid()) return systemFailure(kOpenFailed, "open", path);
  Flusher flusher;
  Status flushed = walkTree(std::move(directory), {}, &flusher);
  if (flushed.code() == kOpendirFailed) flushed.setCode(kOpenFailed);
  return flushed.ok() ? flushDirectory(path) : flushed;
}

}  // namespace tunadm
