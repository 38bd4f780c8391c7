#include "core/ProgramStatus.h"

namespace tunadm {

const char* programStatusText(StatusCode code) {
  switch (code) {
    case kProfileActive:
      return "profile is active";
    case kProfileRunning:
      return "profile is currently running";
    case kProfileNotFound:
      return "profile not found";
    case kRefusedWhileRunning:
      return "command cannot be executed while the profile is running";
    case kChildExitedNonzero:
      return "child process returned nonzero exit code";
    case kChildSignalled:
      return "child process terminated by a signal";
    default:
      return nullptr;
  }
}

}  // namespace tunadm
