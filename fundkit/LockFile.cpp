#include "fundkit/LockFile.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fundkit/DescriptorIo.h"
#include "fundkit/ProgramDirectories.h"

namespace tunadm {
namespace {

constexpr mode_t kLockFileMode = 0666;

bool isTrustedOwner(const struct stat& found) {
  return found.st_uid == 0 || found.st_uid == geteuid();
}

// An open descriptor of `directory` (with its final slash), or none if it is not to be trusted. A
// link is followed only when its owner is trusted, who alone can exchange it afterwards.
ScopedFd openTrustedDirectory(const std::string& directory) {
  const std::string entry = directory.substr(0, directory.find_last_not_of('/') + 1);
  struct stat found {};
  if (!entry.empty() && (lstat(entry.c_str(), &found) != 0 || !isTrustedOwner(found))) {
    return ScopedFd();
  }
  const int no_follow = S_ISLNK(found.st_mode) ? 0 : O_NOFOLLOW;
  ScopedFd opened = openDescriptor(entry.empty() ? "/" : entry, O_RDONLY | O_DIRECTORY | no_follow);
  if (opened.valid() && (fstat(opened.get(), &found) != 0 || !isTrustedOwner(found))) {
    return ScopedFd();
  }
  return opened;
}

ScopedFd openLockFile(int directory, const std::string& name) {
  // Later runs by other users must be able to open the lock file.
  const mode_t old_umask = umask(0);
  ScopedFd file =
      openDescriptor(directory, name.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, kLockFileMode);
  (void)umask(old_umask);  // Cannot fail.
  struct stat found {};
  if (file.valid() && (fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))) {
    return ScopedFd();
  }
  return file;
}

LockState lockExclusively(int file, Blocking blocking) {
  const int operation = LOCK_EX | (blocking == Blocking::kYes ? 0 : LOCK_NB);
  int result = -1;
  do {
    result = flock(file, operation);
  } while (result != 0 && errno == EINTR);
  if (result == 0) return LockState::kHeld;
  return errno == EWOULDBLOCK ? LockState::kBusy : LockState::kUnavailable;
}

}  // namespace

LockFile::LockFile(std::string_view name, Blocking blocking)
    : LockFile(lockDirectory(), name, blocking) {}

LockFile::LockFile(const std::string& directory, std::string_view name, Blocking blocking)
    : directory_(openTrustedDirectory(directory)),
      name_(std::string(name.substr(name.find_last_of("/\\") + 1)) + ".lock") {
  if (name.empty() || !directory_.valid()) return;
  while (!tryAcquire(blocking)) {
  }
}

LockFile::~LockFile() {
  // Removed while still held: whoever waits for it sees by the path that it locked a dead file.
  // A file that someone else has put at the path since is left alone.
  if (!held() || !nameLeadsToFile()) return;
  (void)unlinkat(directory_.get(), name_.c_str(), 0);  // A left-over does no harm.
}

bool LockFile::nameLeadsToFile() const {
  struct stat named {};
  struct stat opened {};
  return fstatat(directory_.get(), name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         fstat(file_.get(), &opened) == 0 && named.st_dev == opened.st_dev &&
         named.st_ino == opened.st_ino;
}

bool LockFile::tryAcquire(Blocking blocking) {
  file_ = openLockFile(directory_.get(), name_);
  if (!file_.valid()) return true;
  state_ = lockExclusively(file_.get(), blocking);
  if (state_ == LockState::kHeld && !nameLeadsToFile()) {
    state_ = LockState::kUnavailable;
    return false;
  }
  if (state_ != LockState::kHeld) (void)file_.close();  // Nothing was written to it.
  return true;
}

}  // namespace tunadm
