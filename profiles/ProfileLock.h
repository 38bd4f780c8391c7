// The lock that serialises the processes which change the profile store.
#pragma once

namespace tunadm {

// Waits for the lock and holds it until destruction. One that is made while this process holds the
// lock already does nothing, so operations that need it can call each other. When the lock file
// cannot be had (a caller who is not root, a lock directory that somebody else prepared), a warning
// is logged and the command goes on without it: a local user must not be able to stop root.
class ProfileLock {
 public:
  ProfileLock();
  ProfileLock(const ProfileLock&) = delete;
  ProfileLock& operator=(const ProfileLock&) = delete;
  ~ProfileLock();

  // True while one exists in this process, also when it goes on without the lock file.
  [[nodiscard]] static bool isHeld();
};

}  // namespace tunadm
