// The daemon's state, from the status file that it rewrites while it runs.
#pragma once

#include "profiles/CurrentProfile.h"

namespace tunadm {

enum class TriState { kYes = 1, kNo = 2, kUnknown = 3 };

// Whether the daemon runs with the current profile: its last update is less than 6 seconds old. No
// when there is no status file, unknown when the file lacks the times.
TriState isDaemonRunning();

// Whether `profile` is the current one; unknown when there is no current profile.
TriState isCurrentProfile(const ProfileIdentity& profile);

}  // namespace tunadm
