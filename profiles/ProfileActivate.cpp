#include "profiles/ProfileActivate.h"

#include "core/ProgramStatus.h"
#include "fundkit/SignalHold.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfileSelector.h"
#include "service/ServiceControl.h"

namespace tunadm {
namespace {

// Deliberate: the service is stopped first whatever the daemon's state seems to be.
Status switchTo(const ProfileRef& profile, std::string_view system) {
  const SignalHold hold;  // whoever asks for an end now would leave the service stopped
  Status stopped = stopService(system, RootCheck::kNo);
  const bool made_current = setCurrentProfile(profile.dir_name);
  Status started = startService(system, RootCheck::kNo);
  if (!stopped.ok()) return stopped;
  return made_current ? started : Status(kApplicationError);
}

}  // namespace

Status activateProfile(std::string_view selector, std::string_view system,
                       std::string* profile_name) {
  if (selector.empty()) return Status(kInvalidArgument);
  const ProfileLock lock;
  ProfileRef profile;
  Status found = resolveSelector(selector, &profile);
  if (!found.ok()) return found;
  *profile_name = profile.profile_name;
  if (found.code() == kProfileRunning) return Status(kSuccess);
  if (found.code() == kProfileActive) return startService(system, RootCheck::kNo);
  return switchTo(profile, system);
}

}  // namespace tunadm
