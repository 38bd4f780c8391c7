#include "profiles/SupportReset.h"

#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "fundkit/FileUtils.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"
#include "profiles/ProfileSelector.h"

namespace tunadm {

Status resetProfile(std::string_view selector, std::string* profile_name) {
  if (!isPrivileged()) return Status(kAuthRequired);
  const ProfileLock lock;
  ProfileRef profile;
  Status found = resolveSelector(selector, &profile);
  if (!found.ok()) return found;
  *profile_name = profile.profile_name;
  if (found.code() == kProfileRunning) return Status(kRefusedWhileRunning);
  removeStateFiles(profile.dir_name);
  return Status(kSuccess);
}

void removeStateFiles(std::string_view dir_name) {
  for (std::string_view file :
       {std::string_view("m2_cache"), std::string_view("sadb.state"), std::string_view("hip.state"),
        std::string_view("peers"), std::string_view("map.state"), kStatusFile}) {
    std::string path;
    if (profileFile(dir_name, file, &path)) (void)removeFile(path);  // most are rarely there
  }
}

}  // namespace tunadm
