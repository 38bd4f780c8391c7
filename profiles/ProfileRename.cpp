#include "profiles/ProfileRename.h"

#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "fundkit/FileUtils.h"
#include "profiles/ConfigControl.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"
#include "profiles/ProfileSelector.h"

namespace tunadm {
namespace {

constexpr std::string_view kContext = "profile rename";

}  // namespace

bool isNewName(std::string_view name) {
  // A selector for the current profile resolves to nothing while there is none, but will later.
  if (namesCurrentProfile(name)) return false;
  ProfileRef other;
  return resolveSelector(name.empty() ? kDefaultName : name, &other).code() == kProfileNotFound;
}

Status renameProfile(std::string_view selector, const std::string& new_name) {
  if (!isPrivileged()) return Status(kAuthRequired);
  if (Status checked = refuseLineBreaks({new_name}, kContext); !checked.ok()) return checked;
  const ProfileLock lock;
  ProfileRef profile;
  if (Status found = resolveSelector(selector, &profile); !found.ok()) return found;
  if (new_name.empty()) return Status(kInvalidArgument, "profile name not provided", kContext);
  if (!isNewName(new_name)) return Status(kInvalidArgument, "invalid profile name", kContext);
  std::string path;
  (void)profileFile(profile.dir_name, kNameFile, &path);  // neither name is empty
  return writeLines(path, {new_name});
}

}  // namespace tunadm
