// The daemon's state, from the status file that it rewrites while it runs.
#pragma once

#include "core/Status.h"
#include "profiles/CurrentProfile.h"

namespace tunadm {

enum class TriState { kYes = 1, kNo = 2, kUnknown = 3 };

// Whether the daemon runs with the current profile: its last update is less than 6 seconds old. No
// when there is no status file, unknown when the file lacks the times.
TriState isDaemonRunning();

struct ServiceState {
  TriState running = TriState::kUnknown;
  TriState helmsman = TriState::kUnknown;  // whether the management server's link is up
  TriState tunnel = TriState::kUnknown;    // whether there is a peer with a tunnel
};

// The daemon's state in full. What the connections are is known only of a daemon that has run for
// more than four seconds. Fails with kApplicationError when the times vanish from the status file
// while it is read.
Status readServiceState(ServiceState* state);

// Whether `profile` is the current one; unknown when there is no current profile.
TriState isCurrentProfile(const ProfileIdentity& profile);

}  // namespace tunadm
