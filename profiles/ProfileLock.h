// The lock that serialises the processes which change the profile store.
#pragma once

namespace tunadm {

// Waits for the lock and holds it until destruction; meanwhile signals from outside are held, too
// (SignalHold), so that none ends a change halfway. One that is made while this process holds the
// lock already does nothing, so operations that need it can call each other.
//
// Only a privileged process takes the lock file, in the lock directory. Where that directory is not
// to be trusted, it locks a file in the installation root instead and says so in the log: a local
// user can neither stop root nor switch root's locking off. An ordinary user, who could not make a
// lock that root may trust, goes on without one.
class ProfileLock {
 public:
  ProfileLock();
  ProfileLock(const ProfileLock&) = delete;
  ProfileLock& operator=(const ProfileLock&) = delete;
  ~ProfileLock();

  // True while one exists in this process.
  [[nodiscard]] static bool isHeld();
};

}  // namespace tunadm
