#include "fundkit/TreeWalk.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

#include "fundkit/DescriptorIo.h"
#include "fundkit/DirectoryStream.h"
#include "fundkit/SystemFailure.h"

namespace tunadm {
namespace {

// Directories above these are closed and opened again, by their "..", on the way back.
constexpr std::size_t kOpenLevels = 32;

struct Entry {
  std::string name;
  bool is_directory;
};

struct Level {
  std::unique_ptr<DirectoryStream> directory;  // none while it is closed
  struct stat closed;                          // what was closed
  std::vector<Entry> entries;                  // those still to be visited, in reverse
};

// All names are taken before the first is visited: not every file system goes on correctly in a
// directory that changes.
Status readEntries(DirectoryStream* directory, std::vector<Entry>* entries) {
  if (!directory->valid()) return systemFailure(kOpendirFailed, "fdopendir", "");
  while (const dirent* entry = directory->next()) {
    entries->push_back({entry->d_name, directory->kindOf(*entry) == DT_DIR});
  }
  if (directory->failed())
    return systemFailure(kOpendirFailed, "read", directory->descriptor(), "");
  std::reverse(entries->begin(), entries->end());
  return Status(kSuccess);
}

bool closeLevel(Level* level) {
  if (level->directory == nullptr) return true;
  if (fstat(level->directory->descriptor(), &level->closed) != 0) return false;
  level->directory.reset();
  return true;
}

// `below` is a directory in the one to be opened. Its ".." leads elsewhere when it has been moved,
// for which errno is ESTALE.
bool reopenLevel(Level* level, int below) {
  level->directory =
      std::make_unique<DirectoryStream>(openDescriptor(below, "..", O_RDONLY | O_DIRECTORY));
  struct stat found {};
  if (!level->directory->valid() || fstat(level->directory->descriptor(), &found) != 0)
    return false;
  const bool same = found.st_dev == level->closed.st_dev && found.st_ino == level->closed.st_ino;
  if (!same) errno = ESTALE;
  return same;
}

class Walk {
 public:
  explicit Walk(TreeVisitor* visitor) : visitor_(visitor) {}

  Status run(ScopedFd top, std::string_view last) {
    if (Status entered = enter(std::move(top)); !entered.ok()) return entered;
    std::vector<Entry>& entries = levels_.front().entries;
    std::stable_partition(entries.begin(), entries.end(),
                          [last](const Entry& entry) { return entry.name == last; });
    while (levels_.size() > 1 || !levels_.front().entries.empty()) {
      Status step = levels_.back().entries.empty() ? leave() : visitNext();
      if (!step.ok()) return step;
    }
    return Status(kSuccess);
  }

 private:
  Status enter(ScopedFd directory) {
    if (levels_.size() >= kOpenLevels && !closeLevel(&levels_[levels_.size() - kOpenLevels])) {
      return systemFailure(kOpendirFailed, "stat", "");
    }
    Level& level = levels_.emplace_back();
    level.directory = std::make_unique<DirectoryStream>(std::move(directory));
    return readEntries(level.directory.get(), &level.entries);
  }

  // An entry stays in the list of its level until the walk has left it.
  Status visitNext() {
    Level& level = levels_.back();
    const Entry& entry = level.entries.back();
    if (entry.is_directory) {
      ScopedFd directory = openDescriptor(level.directory->descriptor(), entry.name.c_str(),
                                          O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
      if (directory.valid()) return enter(std::move(directory));
      // Otherwise it has been removed, or exchanged for a link or a file, since it was listed.
      if (errno != ENOENT && errno != ENOTDIR && errno != ELOOP) {
        return systemFailure(kOpendirFailed, "open", level.directory->descriptor(), entry.name);
      }
    }
    Status visited = visitor_->visitFile(level.directory->descriptor(), entry.name);
    level.entries.pop_back();
    return visited;
  }

  Status leave() {
    Level left = std::move(levels_.back());
    levels_.pop_back();
    Level& parent = levels_.back();
    if (!parent.directory && !reopenLevel(&parent, left.directory->descriptor())) {
      return systemFailure(kOpendirFailed, "open", left.directory->descriptor(), "..");
    }
    Status visited = visitor_->visitDirectory(
        parent.directory->descriptor(), parent.entries.back().name, left.directory->descriptor());
    parent.entries.pop_back();
    return visited;
  }

  TreeVisitor* visitor_;
  std::deque<Level> levels_;
};

}  // namespace

Status walkTree(ScopedFd top, std::string_view last, TreeVisitor* visitor) {
  return Walk(visitor).run(std::move(top), last);
}

}  // namespace tunadm
