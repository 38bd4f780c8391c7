#include "cli/ServiceCommands.h"

#include "profiles/CurrentProfile.h"
#include "profiles/ProfilePaths.h"
#include "service/ServiceControl.h"
#include "service/ServiceStatus.h"

namespace tunadm {

void Hipcmd_ServiceStart::execute(StatusCodeResultField& result) {
  result.status() = startService(system(), RootCheck::kYes);
}

void Hipcmd_ServiceStop::execute(StatusCodeResultField& result) {
  result.status() = stopService(system(), RootCheck::kYes);
}

void Hipcmd_ServiceBounce::execute(StatusCodeResultField& result) {
  result.status() = restartService(system(), RootCheck::kYes);
}

void Hipcmd_ShowStatus::execute(StatusCodeResultField& result) {
  ServiceState state;
  result.status() = readServiceState(currentProfileFile(kStatusFile), &state);
  const bool running = state.running == TriState::kYes;
  running_.set(running);
  helmsman_.set(running && state.helmsman == TriState::kYes);
  tunnel_.set(running && state.tunnel == TriState::kYes);
}

}  // namespace tunadm
