#include "service/ServiceControl.h"

#include "core/Privilege.h"
#include "service/ChildProcess.h"
#include "service/InitSystems.h"

namespace tunadm {
namespace {

using Operation = void (SystemSpecificImpl::*)() const;

Status runOperation(std::string_view system, RootCheck check, Operation operation) {
  if (check == RootCheck::kYes && !isPrivileged()) return Status(kAuthRequired);
  selectSystem(system);
  return runChild([operation] { (currentSystem().*operation)(); });
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

}  // namespace tunadm
