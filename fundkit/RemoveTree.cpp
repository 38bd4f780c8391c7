#include "fundkit/RemoveTree.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"
#include "fundkit/SystemFailure.h"
#include "fundkit/TreeWalk.h"

namespace tunadm {
namespace {

Status removeAt(int parent, const std::string& name, int flags, StatusCode failure) {
  if (unlinkat(parent, name.c_str(), flags) == 0 || errno == ENOENT) return Status(kSuccess);
  return systemFailure(failure, flags == AT_REMOVEDIR ? "rmdir" : "unlink", parent, name);
}

class Remover final : public TreeVisitor {
 public:
  Status visitFile(int parent, const std::string& name) override {
    return removeAt(parent, name, 0, kUnlinkFailed);
  }
  Status visitDirectory(int parent, const std::string& name, int /*directory*/) override {
    return removeAt(parent, name, AT_REMOVEDIR, kRmdirFailed);
  }
};

// With a slash at its end the system would follow a link that the path leads to.
std::string withoutFinalSlashes(const std::string& path) {
  const std::size_t last = path.find_last_not_of('/');
  return last == path.npos ? "/" : path.substr(0, last + 1);
}

Status removeBelow(ScopedFd directory, std::string_view last) {
  Remover remover;
  return walkTree(std::move(directory), last, &remover);
}

}  // namespace

Status removeTree(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  const std::string target = withoutFinalSlashes(path);
  ScopedFd directory = openDescriptor(target, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  if (!directory.valid()) {
    const bool other = errno == ENOENT || errno == ENOTDIR || errno == ELOOP;
    return other ? removeFile(target) : systemFailure(kOpendirFailed, "open", target);
  }
  if (Status emptied = removeBelow(std::move(directory), {}); !emptied.ok()) return emptied;
  return removeEmptyDirectory(target);
}

Status emptyDirectory(const std::string& path, std::string_view last) {
  if (path.empty()) return Status(kInvalidArgument);
  ScopedFd directory =
      openDescriptor(withoutFinalSlashes(path), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  if (!directory.valid() && errno == ENOENT) return Status(kSuccess);
  if (!directory.valid()) return systemFailure(kOpendirFailed, "open", path);
  return removeBelow(std::move(directory), last);
}

}  // namespace tunadm
