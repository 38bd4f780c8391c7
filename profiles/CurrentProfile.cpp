#include "profiles/CurrentProfile.h"

#include <utility>

#include "fundkit/FileUtils.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

constexpr mode_t kMarkerMode = 0666;

bool mayNameProfile(const std::string& dir_name) {
  if (!isDirName(dir_name)) return false;
  const std::string path = profileDirectory(dir_name);
  return isRealDirectory(path) || isMissing(path);
}

// Makes the first profile by friendly name current.
Entered chooseCurrentProfile() {
  ProfileList profiles;
  if (!enumerateProfiles(&profiles)) return Entered::kFailed;
  if (profiles.empty()) return Entered::kNoProfiles;
  return setCurrentProfile(profiles.front().dir_name) ? Entered::kYes : Entered::kFailed;
}

bool isUsable(const ProfileIdentity& identity) {
  return identity.valid && isRegularFile(profileFile(identity.dir_name, kHipConf));
}

}  // namespace

ProfileIdentity lookUpCurrentProfile() {
  const std::string marker = currentMarkerPath();
  std::string dir_name;
  if (readFirstLine(marker, &dir_name) != LineRead::kRead || !mayNameProfile(dir_name)) return {};

  ProfileIdentity identity;
  identity.valid = true;
  identity.current_file = marker;
  identity.dir_path = profileDirectory(dir_name);
  identity.profile_name = readFriendlyName(dir_name);
  identity.dir_name = std::move(dir_name);
  identity.profiles_root = kProfilesRoot;
  return identity;
}

TriState isCurrentProfile(const ProfileRef& profile, const ProfileIdentity& current) {
  if (!current.valid) return TriState::kUnknown;
  return profile.dir_name == current.dir_name ? TriState::kYes : TriState::kNo;
}

std::string currentProfileDirectory() { return lookUpCurrentProfile().dir_path; }

std::string currentProfileFile(std::string_view file_name) {
  return profileFile(lookUpCurrentProfile().dir_name, file_name);
}

bool currentProfileDirectory(std::string* path) {
  *path = currentProfileDirectory();
  return !path->empty();
}

bool currentProfileFile(std::string_view file_name, std::string* path) {
  *path = currentProfileFile(file_name);
  return !path->empty();
}

bool isMarkerName(std::string_view dir_name) {
  return isDirName(dir_name) && dir_name.find('\n') == std::string_view::npos;
}

bool setCurrentProfile(std::string_view dir_name) {
  if (!isMarkerName(dir_name)) return false;
  return replaceFile(currentMarkerPath(), std::string(dir_name).append("\n"), kMarkerMode).ok();
}

std::string readFriendlyName(std::string_view dir_name) {
  std::string name;
  const bool found = readFirstLine(profileFile(dir_name, kNameFile), &name) == LineRead::kRead;
  return found ? name : std::string(dir_name);
}

Entered enterCurrent(std::string* path) {
  path->clear();
  ProfileIdentity identity = lookUpCurrentProfile();
  if (!isUsable(identity)) {
    if (const Entered chosen = chooseCurrentProfile(); chosen != Entered::kYes) return chosen;
    identity = lookUpCurrentProfile();
  }
  if (!changeDirectory(identity.dir_path).ok()) return Entered::kFailed;
  *path = identity.dir_path;
  return Entered::kYes;
}

bool enterCurrentProfile(std::string* path) { return enterCurrent(path) == Entered::kYes; }

}  // namespace tunadm
