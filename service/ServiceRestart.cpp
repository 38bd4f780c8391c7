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
  hold_.emplace();
  keeper_.emplace();
  if (!keeper_->valid()) {
    keeper_.reset();
    hold_.reset();
    Status refused(kForkFailed);
    return withCommand(refused.because("no process to start it again"), ServiceVerb::kStop);
  }
  start_is_due_ = true;
  Status stopped = runChild([this] {
    keeper_->outlastThisChild();
    // A child that the terminal stopped would leave this process waiting with the lock held.
    for (const int signal : {SIGTSTP, SIGTTIN, SIGTTOU}) std::signal(signal, SIG_IGN);
    currentSystem().stop();
  });
  return withCommand(stopped, ServiceVerb::kStop);
}

Status ServiceRestart::finish(Status changed) {
  if (!start_is_due_) return changed;
  Status started =
      keeper_ ? withCommand(keeper_->start(), ServiceVerb::kStart) : startService(system_, check_);
  keeper_.reset();
  hold_.reset();
  return changed.ok() ? started : changed;
}

}  // namespace tunadm
