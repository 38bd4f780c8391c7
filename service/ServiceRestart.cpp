#include "service/ServiceRestart.h"

#include <csignal>

#include "core/Privilege.h"
#include "fundkit/SystemFailure.h"
#include "service/ChildProcess.h"
#include "service/InitSystems.h"

namespace tunadm {

Status ServiceRestart::stop() {
  if (check_ == RootCheck::kYes && !isPrivileged()) return Status(kAuthRequired);
  selectSystem(system_);
  keeper_.emplace();
  if (!keeper_->valid()) {
    Status refused = withCommand(systemFailure(kForkFailed, "fork", ""), ServiceVerb::kStart);
    keeper_.reset();
    return refused;
  }
  start_is_due_ = true;
  Status stopped = runChild([this] {
    keeper_->outlastThisChild();
    // A Ctrl-Z that stopped this child would leave this process waiting with the lock held.
    std::signal(SIGTSTP, SIG_IGN);
    currentSystem().stop();
  });
  return withCommand(stopped, ServiceVerb::kStop);
}

Status ServiceRestart::finish(Status changed) {
  if (!start_is_due_) return changed;
  Status started =
      keeper_ ? withCommand(keeper_->start(), ServiceVerb::kStart) : startService(system_, check_);
  return changed.ok() ? started : changed;
}

}  // namespace tunadm
