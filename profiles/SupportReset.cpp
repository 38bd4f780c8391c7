#include "profiles/SupportReset.h"

#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "fundkit/FileUtils.h"
#include "profiles/PassedFailure.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"
#include "profiles/ProfileSelector.h"

namespace tunadm {
namespace {

constexpr std::string_view kStateFiles[] = {"m2_cache", "sadb.state", "hip.state",
                                            "peers",    "map.state",  kStatusFile};

}  // namespace

Status resetProfile(std::string_view selector, std::string* profile_name) {
  if (!isPrivileged()) return Status(kAuthRequired);
  const ProfileLock lock;
  StoreView store;
  ProfileRef profile;
  if (Status found = resolveSelector(selector, &store, &profile); !found.ok()) return found;
  *profile_name = profile.profile_name;
  return clearState(profile, &store);
}

Status clearState(const ProfileRef& profile, StoreView* store) {
  if (store->isCurrent(profile) && store->daemon() == TriState::kYes) {
    return Status(kRefusedWhileRunning);
  }
  if (Status known = store->knowsCurrent(); !known.ok()) return known;
  removeStateFiles(profile);
  return Status(kSuccess);
}

void removeStateFiles(const ProfileRef& profile) {
  for (const std::string_view file : kStateFiles) {
    logPassedFailure("state file not removed", removeFile(profileFile(profile.dir_name, file)));
  }
}

}  // namespace tunadm
