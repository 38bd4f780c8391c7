#include "service/ServiceControl.h"

#include <unistd.h>

#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "service/ChildProcess.h"
#include "service/InitSystems.h"

namespace tunadm {
namespace {

using Operation = void (SystemSpecificImpl::*)() const;

Status runOperation(std::string_view system, RootCheck check, Operation operation) {
  if (check == RootCheck::kYes && !isPrivileged()) return Status(kAuthRequired);
  selectSystem(system);
  const pid_t child = fork();
  if (child < 0) return Status(kForkFailed);
  if (child == 0) (currentSystem().*operation)();  // does not return
  return outcomeStatus(waitForChild(child));
}

}  // namespace

Status startService(std::string_view system, RootCheck check) {
  return runOperation(system, check, &SystemSpecificImpl::start);
}

Status stopService(std::string_view system, RootCheck check) {
  return runOperation(system, check, &SystemSpecificImpl::stop);
}

Status restartService(std::string_view system, RootCheck check) {
  return runOperation(system, check, &SystemSpecificImpl::restart);
}

Status outcomeStatus(int outcome) {
  if (outcome == kExitBase) return Status(kSuccess);
  if (outcome > kExitBase && outcome < kSignalBase) return Status(kChildExitedNonzero);
  if (outcome >= kSignalBase && outcome < kSignalBase + 1000) return Status(kChildSignalled);
  return Status(kWaitpidFailed);
}

}  // namespace tunadm
