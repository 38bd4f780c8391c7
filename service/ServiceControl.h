// Starting, stopping and restarting the daemon's service.
#pragma once

#include <string_view>

#include "core/Status.h"
#include "service/InitSystems.h"

namespace tunadm {

enum class RootCheck { kNo, kYes };

// Each runs the command of the init system named `system` (see selectSystem) in a child process and
// waits for it; the child's output goes where this process's own goes. Fails with kAuthRequired
// (nothing runs then), kForkFailed, kChildExitedNonzero (also when the command could not be run),
// kChildSignalled or kWaitpidFailed.
Status startService(std::string_view system, RootCheck check);
Status stopService(std::string_view system, RootCheck check);
Status restartService(std::string_view system, RootCheck check);

// Puts the installed adapter's command in front of the cause of its failure:
// "/bin/systemctl stop quenlay: exit status 1". Returns a success as it is.
Status withCommand(Status outcome, ServiceVerb verb);

}  // namespace tunadm
