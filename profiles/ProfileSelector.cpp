#include "profiles/ProfileSelector.h"

#include <utility>

#include "core/ProgramStatus.h"
#include "fundkit/FileUtils.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfilePaths.h"
#include "service/ServiceStatus.h"

namespace tunadm {
namespace {

constexpr std::string_view kDirPrefix = "dir=";

// The code of a profile that has been found.
Status foundCurrent() {
  return Status(isDaemonRunning() == TriState::kYes ? kProfileRunning : kProfileActive);
}

Status found(const ProfileRef& profile) {
  ProfileIdentity identity;
  (void)profileDirectory(profile.dir_name, &identity.dir_path);  // dir names are never empty
  return isCurrentProfile(identity) == TriState::kYes ? foundCurrent() : Status(kSuccess);
}

Status resolveCurrent(ProfileRef* profile) {
  ProfileIdentity identity = lookUpCurrentProfile();
  if (!identity.valid) return Status(kProfileNotFound);
  *profile = {std::move(identity.dir_name), std::move(identity.profile_name)};
  return foundCurrent();
}

Status resolveDirectory(std::string_view dir_name, ProfileRef* profile) {
  std::string path;
  if (!isDirName(dir_name) || !profileDirectory(dir_name, &path) || !isRealDirectory(path)) {
    return Status(kProfileNotFound);
  }
  *profile = {std::string(dir_name), readFriendlyName(dir_name)};
  return found(*profile);
}

Status resolveFriendlyName(std::string_view name, ProfileRef* profile) {
  ProfileList profiles;
  if (!enumerateProfiles(&profiles)) return Status(kApplicationError);
  for (ProfileEntry& entry : profiles) {
    if (entry.profile_name != name) continue;
    *profile = {std::move(entry.dir_name), std::move(entry.profile_name)};
    return found(*profile);
  }
  return Status(kProfileNotFound);
}

}  // namespace

std::string selectorOf(std::string_view dir_name) {
  if (dir_name == kFactoryName) return std::string(kFactoryName);
  return std::string(kDirPrefix).append(dir_name);
}

bool namesCurrentProfile(std::string_view selector) {
  return selector == kCurrentMarker || selector == "--active";
}

Status resolveSelector(std::string_view selector, ProfileRef* profile) {
  if (selector.empty() || namesCurrentProfile(selector)) return resolveCurrent(profile);
  if (selector.starts_with(kDirPrefix)) {
    return resolveDirectory(selector.substr(kDirPrefix.size()), profile);
  }
  if (selector == kFactoryName) {
    *profile = {std::string(kFactoryName), std::string(kFactoryName)};
    return Status(kSuccess);
  }
  return resolveFriendlyName(selector, profile);
}

}  // namespace tunadm
