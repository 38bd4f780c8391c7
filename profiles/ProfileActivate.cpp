#include "profiles/ProfileActivate.h"

#include "core/ProgramStatus.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfileSelector.h"
#include "profiles/StoreView.h"
#include "service/ServiceRestart.h"

namespace tunadm {
namespace {

// Deliberate: the service is stopped first whatever the daemon's state seems to be, and the marker
// moves also when that fails.
Status switchTo(const ProfileRef& profile, const ProfileIdentity& before, ServiceRestart* service) {
  if (Status checked = checkMarkerName(profile.dir_name); !checked.ok()) return checked;
  Status stopped = service->stop();
  if (!service->startIsDue()) return stopped;
  Status made_current = setCurrentAfterStop(profile, stopped, before);
  return stopped.ok() ? made_current : stopped;
}

Status makeCurrent(std::string_view selector, ServiceRestart* service, std::string* profile_name) {
  const ProfileLock lock;
  StoreView store;
  ProfileRef profile;
  Status found = resolveSelector(selector, &store, &profile);
  if (!found.ok()) return found;
  *profile_name = profile.profile_name;
  if (found.code() == kProfileRunning) return Status(kSuccess);
  if (found.code() != kProfileActive) return switchTo(profile, store.current(), service);
  service->requestStart();
  return Status(kSuccess);
}

}  // namespace

Status activateProfile(std::string_view selector, std::string_view system,
                       std::string* profile_name) {
  if (selector.empty()) return Status(kInvalidArgument);
  ServiceRestart service(system, RootCheck::kNo);
  return service.finish(makeCurrent(selector, &service, profile_name));
}

}  // namespace tunadm
