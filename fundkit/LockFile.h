// Advisory locks between processes, by name.
#pragma once

#include <string>
#include <string_view>

#include "fundkit/ScopedFd.h"

namespace tunadm {

enum class Blocking { kNo, kYes };

enum class LockState {
  kHeld,
  kBusy,         // Another process holds it (only without blocking).
  kUnavailable,  // The lock file or its directory cannot be opened or is not to be trusted.
};

// Held from construction to destruction. The lock file is removed on release, and still two
// processes never hold the same lock at once. A lock directory that belongs to neither root nor the
// effective user is not used, nor one reached through such a user's link: its owner could stop the
// program or make it create files elsewhere.
class LockFile {
 public:
  // The lock file is the last component of `name` (after '/' or '\') and ".lock" in the lock
  // directory. An empty name is kUnavailable.
  LockFile(std::string_view name, Blocking blocking);

  // The same in `directory`, which ends in a slash.
  LockFile(const std::string& directory, std::string_view name, Blocking blocking);

  ~LockFile();
  LockFile(const LockFile&) = delete;
  LockFile& operator=(const LockFile&) = delete;

  bool held() const { return state_ == LockState::kHeld; }
  LockState state() const { return state_; }

 private:
  // One attempt; false when the lock file was removed before it was locked.
  bool tryAcquire(Blocking blocking);
  bool nameLeadsToFile() const;

  ScopedFd directory_;
  std::string name_;  // in the directory
  ScopedFd file_;
  LockState state_ = LockState::kUnavailable;
};

}  // namespace tunadm
