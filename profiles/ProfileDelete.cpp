#include "profiles/ProfileDelete.h"

#include <string>

#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "fundkit/FileUtils.h"
#include "fundkit/RemoveTree.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileCreate.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"
#include "profiles/ProfileSelector.h"

namespace tunadm {
namespace {

bool removeDirectory(const std::string& dir_name) {
  std::string directory;
  if (!profileDirectory(dir_name, &directory)) return false;
  for (const char* certificates : {"/ca-certs", "/customer-certs", "/peer_certs"}) {
    (void)emptyDirectory(directory + certificates);  // what is left is removed below, or reported
  }
  return emptyDirectory(directory).ok() && removeEmptyDirectory(directory).ok();
}

void keepACurrentProfile() {
  std::string path;
  if (enterCurrentProfile(&path)) return;
  ProfileList left;
  if (!enumerateProfiles(&left) || !left.empty()) return;
  ProfileRef created;
  // The removal has been done, whatever becomes of this.
  (void)createProfile(CreateRequest(), &created);
}

}  // namespace

Status deleteProfile(std::string_view selector) {
  if (!isPrivileged()) return Status(kAuthRequired);
  if (selector == kFactoryName || selector == kCurrentMarker) return Status(kInvalidArgument);
  const ProfileLock lock;
  ProfileRef profile;
  Status found = resolveSelector(selector, &profile);
  if (!found.ok()) return found;
  if (profile.dir_name == kFactoryName) return Status(kInvalidArgument);
  if (found.code() == kProfileRunning) return Status(kRefusedWhileRunning);
  if (!removeDirectory(profile.dir_name)) return Status(kApplicationError);
  keepACurrentProfile();
  return Status(kSuccess);
}

}  // namespace tunadm
