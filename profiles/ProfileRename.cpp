#include "profiles/ProfileRename.h"

#include "core/Privilege.h"
#include "fundkit/FileUtils.h"
#include "profiles/LineBreaks.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"
#include "profiles/ProfileSelector.h"
#include "profiles/StoreView.h"

namespace tunadm {
namespace {

constexpr std::string_view kContext = "profile rename";

}  // namespace

Status renameProfile(std::string_view selector, const std::string& new_name) {
  if (!isPrivileged()) return Status(kAuthRequired);
  if (Status checked = refuseLineBreaks({new_name}, kContext); !checked.ok()) return checked;
  const ProfileLock lock;
  StoreView store;
  ProfileRef profile;
  if (Status found = resolveSelector(selector, &store, &profile); !found.ok()) return found;
  if (new_name.empty()) return Status(kInvalidArgument, "profile name not provided", kContext);
  if (Status checked = checkNewName(new_name, kContext, &store); !checked.ok()) return checked;
  return writeFriendlyName(profile, new_name);
}

Status writeFriendlyName(const ProfileRef& profile, const std::string& new_name) {
  const std::string path = profileFile(profile.dir_name, kNameFile);
  // Read again: the name may have been repaired since the profile was found.
  std::string name;
  if (readFirstLine(path, &name) == LineRead::kRead && name == new_name) return Status(kSuccess);
  return replaceFile(path, new_name + "\n", kPrivateFileMode);
}

}  // namespace tunadm
