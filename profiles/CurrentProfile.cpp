#include "profiles/CurrentProfile.h"

#include <algorithm>

#include "core/ProgramStatus.h"
#include "fundkit/BasicLog.h"
#include "fundkit/FileUtils.h"
#include "fundkit/SystemFailure.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

constexpr mode_t kMarkerMode = 0666;

// What the marker says, believed or not. An error leaves open which profile is current.
LineRead readMarker(std::string* dir_name) { return readFirstLine(currentMarkerPath(), dir_name); }

bool mayBeCurrent(const std::string& dir_name) {
  if (!isMarkerName(dir_name)) return false;
  const std::string path = profileDirectory(dir_name);
  return isRealDirectory(path) || isMissing(path);
}

ProfileIdentity identityOf(const std::string& dir_name) {
  if (!mayBeCurrent(dir_name)) return {};
  ProfileIdentity identity;
  identity.valid = true;
  identity.current_file = currentMarkerPath();
  identity.dir_name = dir_name;
  identity.dir_path = profileDirectory(dir_name);
  identity.profile_name = readFriendlyName(dir_name);
  identity.profiles_root = kProfilesRoot;
  return identity;
}

// Makes the first profile by friendly name current.
Status chooseCurrentProfile() {
  ProfileList profiles;
  if (Status listed = listStore(&profiles); !listed.ok()) return listed;
  for (const ProfileRef& profile : profiles) {
    if (isMarkerName(profile.dir_name)) return writeMarker(profile.dir_name);
  }
  return Status(kProfileNotFound);
}

bool isUsable(const ProfileIdentity& identity) {
  return identity.valid && isRegularFile(profileFile(identity.dir_name, kHipConf));
}

}  // namespace

ProfileIdentity lookUpCurrentProfile() {
  std::string dir_name;
  return readMarker(&dir_name) == LineRead::kRead ? identityOf(dir_name) : ProfileIdentity();
}

bool isMarkerUnreadable() {
  std::string dir_name;
  return readMarker(&dir_name) == LineRead::kError;
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
  if (!isDirName(dir_name)) return false;
  if (dir_name.front() == '.' && dir_name != kFactoryName) return false;
  return std::none_of(dir_name.begin(), dir_name.end(), [](char byte) {
    return static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
  });
}

Status checkMarkerName(std::string_view dir_name) {
  if (isMarkerName(dir_name)) return Status(kSuccess);
  return Status(kApplicationError)
      .because(std::string("a profile in a directory of this name cannot be current: ")
                   .append(dir_name));
}

Status writeMarker(std::string_view dir_name) {
  if (Status checked = checkMarkerName(dir_name); !checked.ok()) return checked;
  Status written =
      replaceFile(currentMarkerPath(), std::string(dir_name).append("\n"), kMarkerMode);
  if (!written.ok()) written.setCode(kApplicationError);
  return written;
}

bool setCurrentProfile(std::string_view dir_name) { return writeMarker(dir_name).ok(); }

Status setCurrentAfterStop(const ProfileRef& profile, const Status& stopped,
                           const ProfileIdentity& before) {
  if (Status written = writeMarker(profile.dir_name); !written.ok()) return written;
  if (!stopped.ok() && before.dir_name != profile.dir_name &&
      isDaemonRunning(profileFile(before.dir_name, kStatusFile)) == TriState::kYes) {
    TUNADM_LOG(programLogger(), kLogWarning, sourceFileName(__FILE__), "setCurrentAfterStop",
               "the daemon was not stopped and is still reported as running with another profile")
        .detail("running with = %s", before.profile_name.c_str())
        .detail("current = %s", profile.profile_name.c_str());
  }
  return Status(kSuccess);
}

std::string readFriendlyName(std::string_view dir_name) {
  std::string name;
  const bool found = readFirstLine(profileFile(dir_name, kNameFile), &name) == LineRead::kRead;
  return found ? name : std::string(dir_name);
}

Status enterCurrent(std::string* path) {
  path->clear();
  std::string dir_name;
  // Choosing another profile for want of an answer would be a change that was not asked for.
  if (readMarker(&dir_name) == LineRead::kError) {
    return systemFailure(kApplicationError, "read", currentMarkerPath());
  }
  ProfileIdentity identity = identityOf(dir_name);
  if (!isUsable(identity)) {
    if (Status chosen = chooseCurrentProfile(); !chosen.ok()) return chosen;
    identity = lookUpCurrentProfile();
  }
  Status entered = changeDirectory(identity.dir_path);
  if (entered.ok()) {
    *path = identity.dir_path;
  } else {
    entered.setCode(kApplicationError);
  }
  return entered;
}

bool enterCurrentProfile(std::string* path) { return enterCurrent(path).ok(); }

}  // namespace tunadm
