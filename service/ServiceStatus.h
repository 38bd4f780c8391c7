// The daemon's state, from the status file that it rewrites while it runs.
#pragma once

#include <string>

#include "core/Status.h"

namespace tunadm {

enum class TriState { kYes = 1, kNo = 2, kUnknown = 3 };

// Whether the daemon runs that writes `status_file`: its last update is less than 6 seconds old. No
// when there is no such file (or the path is empty), unknown when the file lacks the times. A file
// that is there but does not show the times is looked at again for up to a tenth of a second.
[[nodiscard]] TriState isDaemonRunning(const std::string& status_file);

struct ServiceState {
  TriState running = TriState::kUnknown;
  TriState helmsman = TriState::kUnknown;  // whether the management server's link is up
  TriState tunnel = TriState::kUnknown;    // whether there is a peer with a tunnel
};

// The daemon's state in full, from the same file. The state of its connections is known only after
// it has run for more than four seconds. Fails with kApplicationError when the times vanish from
// the file between two looks at it.
Status readServiceState(const std::string& status_file, ServiceState* state);

}  // namespace tunadm
