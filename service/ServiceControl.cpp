#include "service/ServiceControl.h"

#include <cstddef>
#include <string>

#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "service/ChildProcess.h"

namespace tunadm {
namespace {

using Operation = void (SystemSpecificImpl::*)() const;

Status runOperation(std::string_view system, RootCheck check, ServiceVerb verb,
                    Operation operation) {
  if (check == RootCheck::kYes && !isPrivileged()) return Status(kAuthRequired);
  selectSystem(system);
  return withCommand(runChild([operation] { (currentSystem().*operation)(); }), verb);
}

// "/bin/systemctl stop quenlay": what a user would type.
std::string commandLine(const ProgramCall& call) {
  std::string line = call.path;
  for (std::size_t i = 1; i < kMostArguments && call.arguments[i] != nullptr; ++i) {
    line.append(" ").append(call.arguments[i]);
  }
  return line;
}

}  // namespace

Status startService(std::string_view system, RootCheck check) {
  return runOperation(system, check, ServiceVerb::kStart, &SystemSpecificImpl::start);
}

Status stopService(std::string_view system, RootCheck check) {
  return runOperation(system, check, ServiceVerb::kStop, &SystemSpecificImpl::stop);
}

Status restartService(std::string_view system, RootCheck check) {
  return runOperation(system, check, ServiceVerb::kRestart, &SystemSpecificImpl::restart);
}

Status withCommand(Status outcome, ServiceVerb verb) {
  if (outcome.ok()) return outcome;
  const ProgramCall call = currentSystem().command(verb);
  if (call.path == nullptr) return outcome.because("this host has no init system to command");
  const std::string line = commandLine(call);
  return outcome.because(outcome.code() == kChildExitedNonzero
                             ? exitCause(call.path, line, outcome.cause())
                             : line + ": " + outcome.cause());
}

}  // namespace tunadm
