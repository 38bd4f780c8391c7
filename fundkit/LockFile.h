// Advisory locks between processes, by name.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "fundkit/ScopedFd.h"

namespace tunadm {

enum class Blocking { kNo, kYes };

enum class LockState {
  kHeld,
  kBusy,         // another process holds it (only without blocking)
  kUnavailable,  // the lock file or its directory cannot be opened or is not to be trusted
};

// Held from construction to destruction. The lock file is removed on release, and still two
// processes never hold the same lock at once. A lock directory that belongs to neither root nor the
// effective user is not used, nor one reached through such a user's link: its owner could stop the
// program or make it create files elsewhere.
//
// A wait that lasts longer than a second is said once in the program's log, as a WARNING, with the
// process that holds the lock if that can be known. Signals end the wait as they end any other.
class LockFile {
 public:
  // The lock file is the last component of `name` (after '/' or '\') and ".lock" in the lock
  // directory. An empty name is kUnavailable.
  LockFile(std::string_view name, Blocking blocking);

  // The same in `directory`, which ends in a slash. A lock file that is created has exactly `mode`,
  // whatever the umask.
  LockFile(const std::string& directory, std::string_view name, Blocking blocking,
           mode_t mode = 0666);

  ~LockFile();
  LockFile(const LockFile&) = delete;
  LockFile& operator=(const LockFile&) = delete;

  [[nodiscard]] bool held() const { return state_ == LockState::kHeld; }
  [[nodiscard]] LockState state() const { return state_; }

 private:
  // One attempt; false when the lock file was removed before it was locked.
  bool tryAcquire(Blocking blocking, mode_t mode);
  bool nameLeadsToFile() const;
  LockState waitForLock();

  ScopedFd directory_;
  std::string name_;  // in the directory
  ScopedFd file_;
  LockState state_ = LockState::kUnavailable;
  bool wait_was_said_ = false;
};

}  // namespace tunadm
