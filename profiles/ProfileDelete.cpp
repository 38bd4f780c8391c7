#include "profiles/ProfileDelete.h"

#include <string>

#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "fundkit/FileUtils.h"
#include "fundkit/RemoveTree.h"
#include "profiles/CurrentProfile.h"
#include "profiles/PassedFailure.h"
#include "profiles/ProfileCreate.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"
#include "profiles/ProfileSelector.h"
#include "profiles/StoreView.h"

namespace tunadm {
namespace {

Status removeDirectory(const ProfileRef& profile) {
  const std::string directory = profileDirectory(profile.dir_name);
  for (const char* certificates : {"/ca-certs", "/customer-certs", "/peer_certs"}) {
    (void)emptyDirectory(directory + certificates);  // what is left is removed below, or reported
  }
  // The name goes last, so that a removal that was killed can be repeated by name.
  Status removed = emptyDirectory(directory, kNameFile);
  if (removed.ok()) removed = removeEmptyDirectory(directory);
  if (!removed.ok()) removed.setCode(kApplicationError);
  return removed;
}

// The removal has been done whatever becomes of this.
void keepACurrentProfile() {
  std::string path;
  Status entered = enterCurrent(&path);
  if (entered.code() != kProfileNotFound) {
    return logPassedFailure("no current profile chosen", entered);
  }
  ProfileRef created;
  logPassedFailure("no default profile made", createProfile(CreateRequest(), &created));
}

}  // namespace

Status deleteProfile(std::string_view selector) {
  if (!isPrivileged()) return Status(kAuthRequired);
  if (selector == kFactoryName || selector == kCurrentMarker) return Status(kInvalidArgument);
  const ProfileLock lock;
  StoreView store;
  ProfileRef profile;
  Status found = resolveSelector(selector, &store, &profile);
  if (!found.ok()) return found;
  if (profile.dir_name == kFactoryName) return Status(kInvalidArgument);
  if (found.code() == kProfileRunning) return Status(kRefusedWhileRunning);
  if (Status known = store.knowsCurrent(); !known.ok()) return known;
  if (Status removed = removeDirectory(profile); !removed.ok()) return removed;
  keepACurrentProfile();
  return Status(kSuccess);
}

}  // namespace tunadm
