#include "fundkit/RemoveTree.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "fundkit/DescriptorIo.h"
#include "fundkit/DirectoryStream.h"

namespace tunadm {
namespace {

struct Entry {
  std::string name;
  bool is_directory;
};

// With a slash at its end the system would follow a link that the path leads to.
std::string withoutFinalSlashes(const std::string& path) {
  const std::size_t last = path.find_last_not_of('/');
  return last == path.npos ? "/" : path.substr(0, last + 1);
}

// All names are taken before the first is removed: not every file system goes on correctly in a
// directory that changes.
Status readEntries(DirectoryStream* stream, std::vector<Entry>* entries) {
  while (const dirent* entry = stream->next()) {
    entries->push_back({entry->d_name, stream->kindOf(*entry) == DT_DIR});
  }
  return Status(stream->failed() ? kOpendirFailed : kSuccess);
}

Status removeOther(int parent, const std::string& name) {
  const bool gone = unlinkat(parent, name.c_str(), 0) == 0 || errno == ENOENT;
  return Status(gone ? kSuccess : kUnlinkFailed);
}

Status removeBelow(DirectoryStream* stream);

// Removes what else is there as well.
Status removeDirectory(int parent, const std::string& name) {
  ScopedFd directory = openDescriptor(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  if (!directory.valid()) {
    if (errno == ENOENT) return Status(kSuccess);
    // No directory, or exchanged for a link or a file since it was looked at.
    if (errno == ENOTDIR || errno == ELOOP) return removeOther(parent, name);
    return Status(kOpendirFailed);
  }
  DirectoryStream stream(std::move(directory));
  if (!stream.valid()) return Status(kOpendirFailed);
  if (Status emptied = removeBelow(&stream); !emptied.ok()) return emptied;
  const bool gone = unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT;
  return Status(gone ? kSuccess : kRmdirFailed);
}

// One descriptor stays open for each level, which bounds the depth.
Status removeBelow(DirectoryStream* stream) {
  std::vector<Entry> entries;
  if (Status read = readEntries(stream, &entries); !read.ok()) return read;
  for (const Entry& entry : entries) {
    Status removed = entry.is_directory ? removeDirectory(stream->descriptor(), entry.name)
                                        : removeOther(stream->descriptor(), entry.name);
    if (!removed.ok()) return removed;
  }
  return Status(kSuccess);
}

}  // namespace

Status removeTree(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  return removeDirectory(AT_FDCWD, withoutFinalSlashes(path));
}

Status emptyDirectory(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  const std::string target = withoutFinalSlashes(path);
  ScopedFd directory = openDescriptor(target, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  if (!directory.valid()) return Status(errno == ENOENT ? kSuccess : kOpendirFailed);
  DirectoryStream stream(std::move(directory));
  return stream.valid() ? removeBelow(&stream) : Status(kOpendirFailed);
}

}  // namespace tunadm
