#include "profiles/ProfileLock.h"

#include <optional>
#include <string>

#include "core/Privilege.h"
#include "fundkit/BasicLog.h"
#include "fundkit/FileUtils.h"
#include "fundkit/LockFile.h"
#include "fundkit/ProgramDirectories.h"
#include "fundkit/SignalHold.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

constexpr const char* kLockName = "profiles";
constexpr mode_t kPrivateMode = 0600;

int holders = 0;
std::optional<LockFile> lock_file;
std::optional<LockFile> root_lock_file;
std::optional<SignalHold> signal_hold;

void warn(const char* text) {
  TUNADM_LOG(programLogger(), kLogWarning, sourceFileName(__FILE__), "ProfileLock", text);
}

void takeRootLock() {
  root_lock_file.emplace(std::string(kInstallRoot), kLockName, Blocking::kYes, kPrivateMode);
}

// A lock directory that belongs to a local user can be removed by that user, and the next process
// of root's then makes one that is used. So a process that uses the directory takes a lock in the
// installation root as well if there is one, and a process that is about to use only that lock
// looks at the directory again.
void takeLock() {
  const std::string root_lock = std::string(kInstallRoot).append(kLockName).append(".lock");
  for (;;) {
    lock_file.emplace(lockDirectory(), kLockName, Blocking::kYes);
    if (lock_file->held()) {
      if (!isMissing(root_lock)) takeRootLock();
      return;
    }
    takeRootLock();
    const LockFile look(lockDirectory(), kLockName, Blocking::kNo);
    if (look.state() == LockState::kUnavailable) break;
    root_lock_file.reset();
  }
  warn(root_lock_file->held()
           ? "the lock directory is not to be trusted; locking a file in /opt/vrx instead"
           : "going on without the profile lock");
}

}  // namespace

ProfileLock::ProfileLock() {
  if (holders++ > 0) return;
  if (isPrivileged()) takeLock();
  signal_hold.emplace();
}

ProfileLock::~ProfileLock() {
  if (--holders > 0) return;
  root_lock_file.reset();
  lock_file.reset();
  signal_hold.reset();
}

bool ProfileLock::isHeld() { return holders > 0; }

}  // namespace tunadm
