#include "fundkit/LockFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "fundkit/BasicLog.h"
#include "fundkit/DescriptorIo.h"
#include "fundkit/ProgramDirectories.h"
#include "fundkit/TimeUtils.h"

namespace tunadm {
namespace {

constexpr Duration kQuietWait = kSecond;
constexpr Duration kLongestPause = 20 * kMillisecond;
constexpr std::size_t kLargestTable = std::size_t{16} << 20;

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

ScopedFd openLockFile(int directory, const std::string& name, mode_t mode) {
  // Later runs by other users must be able to open the lock file where `mode` lets them.
  const mode_t old_umask = umask(0);
  ScopedFd file = openDescriptor(directory, name.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, mode);
  umask(old_umask);  // cannot fail
  struct stat found {};
  if (file.valid() && (fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))) {
    return ScopedFd();
  }
  return file;
}

// `operation` as of flock(2).
LockState lockFile(int file, int operation) {
  int result = -1;
  do {
    result = flock(file, operation);
  } while (result != 0 && errno == EINTR);
  if (result == 0) return LockState::kHeld;
  return errno == EWOULDBLOCK ? LockState::kBusy : LockState::kUnavailable;
}

// Looks again at growing intervals for about a second: most holders are quick.
LockState pollForLock(int file) {
  const TimePoint end = monotonicTime() + kQuietWait;
  Duration pause = kMillisecond;
  LockState state = lockFile(file, LOCK_EX | LOCK_NB);
  while (state == LockState::kBusy && monotonicTime() < end) {
    poll(nullptr, 0, static_cast<int>(pause / kMillisecond));
    pause = std::min(2 * pause, kLongestPause);
    state = lockFile(file, LOCK_EX | LOCK_NB);
  }
  return state;
}

// The process that a line of /proc/locks shows as holding a flock on this file; 0 for other lines.
// Such a line is "1: FLOCK  ADVISORY  WRITE 4711 08:01:5678 0 EOF"; the line of a process that
// waits has "->" after its number.
long holderInLine(const char* line, const struct stat& file) {
  char kind[16] = {};
  long process = 0;
  unsigned device_major = 0;
  unsigned device_minor = 0;
  unsigned long long inode = 0;
  // NOLINTNEXTLINE(cert-err34-c): the kernel's numbers fit.
  const int fields = std::sscanf(line, "%*s %15s %*s %*s %ld %x:%x:%llu", kind, &process,
                                 &device_major, &device_minor, &inode);
  const bool held = fields == 5 && std::strcmp(kind, "FLOCK") == 0 && inode == file.st_ino &&
                    makedev(device_major, device_minor) == file.st_dev;
  return held && process > 0 ? process : 0;
}

// 0 when it cannot be known, as for a process that cannot be seen from here.
long lockHolder(int file) {
  struct stat found {};
  std::string table;
  const ScopedFd locks = openDescriptor("/proc/locks", O_RDONLY);
  if (fstat(file, &found) != 0 || !readAll(locks.get(), kLargestTable, &table)) return 0;
  std::size_t start = 0;
  for (std::size_t end = table.find('\n'); end != table.npos; end = table.find('\n', start)) {
    if (const long holder = holderInLine(&table[start], found); holder != 0) return holder;
    start = end + 1;
  }
  return 0;
}

void sayWhoIsWaitedFor(long holder) {
  const std::string text = holder == 0
                               ? "waiting for the lock held by another process"
                               : "waiting for the lock held by process " + std::to_string(holder);
  TUNADM_LOG(programLogger(), kLogWarning, "LockFile", "LockFile", text);
}

}  // namespace

LockFile::LockFile(std::string_view name, Blocking blocking)
    : LockFile(lockDirectory(), name, blocking) {}

LockFile::LockFile(const std::string& directory, std::string_view name, Blocking blocking,
                   mode_t mode)
    : directory_(openTrustedDirectory(directory)),
      name_(std::string(name.substr(name.find_last_of("/\\") + 1)) + ".lock") {
  if (name.empty() || !directory_.valid()) return;
  while (!tryAcquire(blocking, mode)) {
  }
}

LockFile::~LockFile() {
  // Removed while still held: who locks the removed file next sees by the path that it is dead. A
  // file that another process has put at the path since is left alone.
  if (!held() || !nameLeadsToFile()) return;
  (void)unlinkat(directory_.get(), name_.c_str(), 0);  // a lock file left behind does no harm
}

bool LockFile::nameLeadsToFile() const {
  struct stat named {};
  struct stat opened {};
  return fstatat(directory_.get(), name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         fstat(file_.get(), &opened) == 0 && named.st_dev == opened.st_dev &&
         named.st_ino == opened.st_ino;
}

LockState LockFile::waitForLock() {
  const LockState state = pollForLock(file_.get());
  if (state != LockState::kBusy) return state;
  if (!wait_was_said_) sayWhoIsWaitedFor(lockHolder(file_.get()));
  wait_was_said_ = true;
  return lockFile(file_.get(), LOCK_EX);
}

bool LockFile::tryAcquire(Blocking blocking, mode_t mode) {
  file_ = openLockFile(directory_.get(), name_, mode);
  if (!file_.valid()) return true;
  state_ = blocking == Blocking::kYes ? waitForLock() : lockFile(file_.get(), LOCK_EX | LOCK_NB);
  if (state_ == LockState::kHeld && !nameLeadsToFile()) {
    state_ = LockState::kUnavailable;
    return false;
  }
  if (state_ != LockState::kHeld) (void)file_.close();  // nothing was written to it
  return true;
}

}  // namespace tunadm
