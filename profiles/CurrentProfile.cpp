#include "profiles/CurrentProfile.h"

#include <utility>

#include "fundkit/FileUtils.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

bool mayNameProfile(const std::string& dir_name) {
  std::string path;
  if (!isDirName(dir_name) || !profileDirectory(dir_name, &path)) return false;
  return isRealDirectory(path) || isMissing(path);
}

// Makes the first profile by friendly name current.
bool chooseCurrentProfile() {
  ProfileList profiles;
  if (!enumerateProfiles(&profiles) || profiles.empty()) return false;
  return setCurrentProfile(profiles.front().dir_name);
}

bool isUsable(const ProfileIdentity& identity) {
  std::string hip_conf;
  return identity.valid && profileFile(identity.dir_name, kHipConf, &hip_conf) &&
         isRegularFile(hip_conf);
}

}  // namespace

ProfileIdentity lookUpCurrentProfile() {
  std::string marker;
  std::string dir_name;
  (void)currentMarkerPath(&marker);  // cannot fail: the name is a constant
  if (!readFirstLine(marker, &dir_name).ok() || !mayNameProfile(dir_name)) return {};

  ProfileIdentity identity;
  identity.valid = true;
  identity.current_file = marker;
  (void)profileDirectory(dir_name, &identity.dir_path);  // not empty: checked above
  identity.profile_name = readFriendlyName(dir_name);
  identity.dir_name = std::move(dir_name);
  identity.profiles_root = kProfilesRoot;
  return identity;
}

bool currentProfileDirectory(std::string* path) {
  *path = lookUpCurrentProfile().dir_path;
  return !path->empty();
}

bool currentProfileFile(std::string_view file_name, std::string* path) {
  path->clear();
  if (file_name.empty() || !currentProfileDirectory(path)) return false;
  path->append("/").append(file_name);
  return true;
}

bool setCurrentProfile(std::string_view dir_name) {
  if (!isDirName(dir_name) || dir_name.find('\n') != std::string_view::npos) return false;
  std::string marker;
  (void)currentMarkerPath(&marker);  // cannot fail: the name is a constant
  // The marker is a file by rule. A link would lead the write and the open mode to another file,
  // and a FIFO or a device would keep no name.
  if (!isRealFile(marker) && !removeFile(marker).ok()) return false;
  return writeLines(marker, {std::string(dir_name)}).ok() && changeMode(marker, 0666).ok();
}

std::string readFriendlyName(std::string_view dir_name) {
  std::string path;
  std::string name;
  if (profileFile(dir_name, kNameFile, &path) && readFirstLine(path, &name).ok()) return name;
  return std::string(dir_name);
}

bool enterCurrentProfile(std::string* path) {
  path->clear();
  ProfileIdentity identity = lookUpCurrentProfile();
  if (!isUsable(identity)) {
    if (!chooseCurrentProfile()) return false;
    identity = lookUpCurrentProfile();
  }
  if (!changeDirectory(identity.dir_path).ok()) return false;
  *path = identity.dir_path;
  return true;
}

}  // namespace tunadm
