#include "profiles/ProfileSelector.h"

#include <algorithm>
#include <string>

#include "core/ProgramStatus.h"
#include "fundkit/FileUtils.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

constexpr std::string_view kDirPrefix = "dir=";

// The selectors that name the current profile, whichever it is, but for the empty one.
bool namesCurrentProfile(std::string_view selector) {
  return selector == kCurrentMarker || selector == "--active";
}

// The code of a profile that has been found.
Status found(const ProfileRef& profile, StoreView* store) {
  if (!store->isCurrent(profile)) return Status(kSuccess);
  return Status(store->daemon() == TriState::kYes ? kProfileRunning : kProfileActive);
}

Status resolveCurrent(StoreView* store, ProfileRef* profile) {
  const ProfileIdentity& current = store->current();
  if (!current.valid) return Status(kProfileNotFound);
  *profile = {current.dir_name, current.profile_name};
  return found(*profile, store);
}

Status resolveDirectory(std::string_view dir_name, StoreView* store, ProfileRef* profile) {
  if (!isDirName(dir_name) || !isRealDirectory(profileDirectory(dir_name))) {
    return Status(kProfileNotFound);
  }
  *profile = {std::string(dir_name), readFriendlyName(dir_name)};
  return found(*profile, store);
}

Status resolveFriendlyName(std::string_view name, StoreView* store, ProfileRef* profile) {
  const ProfileList* profiles = nullptr;
  if (Status listed = store->profiles(&profiles); !listed.ok()) return listed;
  const auto match =
      std::find_if(profiles->begin(), profiles->end(),
                   [name](const ProfileRef& each) { return each.profile_name == name; });
  if (match == profiles->end()) return Status(kProfileNotFound);
  *profile = *match;
  return found(*profile, store);
}

}  // namespace

Status resolveSelector(std::string_view selector, StoreView* store, ProfileRef* profile) {
  if (selector.empty() || namesCurrentProfile(selector)) return resolveCurrent(store, profile);
  if (selector.starts_with(kDirPrefix)) {
    return resolveDirectory(selector.substr(kDirPrefix.size()), store, profile);
  }
  if (selector == kFactoryName) {
    *profile = {std::string(kFactoryName), std::string(kFactoryName)};
    return Status(kSuccess);
  }
  return resolveFriendlyName(selector, store, profile);
}

Status checkNewName(std::string_view name, std::string_view context, StoreView* store) {
  Status refused(kInvalidArgument, "invalid profile name", context);
  // A selector for the current profile resolves to nothing while there is none, but will later.
  if (namesCurrentProfile(name)) return refused;
  ProfileRef other;
  Status found = resolveSelector(name.empty() ? kDefaultName : name, store, &other);
  if (found.code() == kProfileNotFound) return Status(kSuccess);
  return refused.because(found.cause());
}

}  // namespace tunadm
