#include "service/ServiceRestart.h"

#include <csignal>

#include "core/Privilege.h"
#include "service/ChildProcess.h"
#include "service/InitSystems.h"

namespace tunadm {

Status ServiceRestart::stop() {
  if (check_ == RootCheck::kYes && !isPrivileged()) return Status(kAuthRequired);
  selectSystem(system_);
  keeper_.emplace();
  if (!keeper_->valid()) {
    keeper_.reset();
    return Status(kForkFailed);
  }
  start_is_due_ = true;
  return runChild([this] {
    keeper_->outlastThisChild();
    // A Ctrl-Z that stopped this child would leave this process waiting with the lock held.
    (void)std::signal(SIGTSTP, SIG_IGN);
    currentSystem().stop();
  });
}

Status ServiceRestart::finish(Status changed) {
  if (!start_is_due_) return changed;
  Status started = keeper_ ? keeper_->start() : startService(system_, check_);
  return changed.ok() ? started : changed;
}

}  // namespace tunadm
