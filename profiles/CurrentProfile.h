// The current profile: the one that the daemon runs with, named by the store's marker file.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"
#include "profiles/ProfileRef.h"
#include "service/ServiceStatus.h"

namespace tunadm {

// What the marker file says. Without a current profile `valid` is false and all texts are empty.
struct ProfileIdentity {
  bool valid = false;
  std::string current_file;  // the marker file's path
  std::string dir_name;
  std::string dir_path;
  std::string profile_name;  // the friendly name, or dir_name when there is none to be read
  std::string profiles_root;
};

// Reads the marker. Every local user can write it and root acts on it: a text that isMarkerName
// refuses, or that names something other than a real directory, counts as no current profile. A
// directory that does not exist, or no longer does, is what the marker names all the same.
ProfileIdentity lookUpCurrentProfile();

// True when the marker is there, but an error keeps it from being read: it is not known then which
// profile is current, and lookUpCurrentProfile finds none.
[[nodiscard]] bool isMarkerUnreadable();

// Whether `profile` is the current one; unknown when there is none.
[[nodiscard]] TriState isCurrentProfile(const ProfileRef& profile, const ProfileIdentity& current);

// Paths of the current profile; empty when there is none, or `file_name` is empty.
std::string currentProfileDirectory();
std::string currentProfileFile(std::string_view file_name);

// The same for callers that want to be told: false, with `path` cleared, in those cases.
[[nodiscard]] bool currentProfileDirectory(std::string* path);
[[nodiscard]] bool currentProfileFile(std::string_view file_name, std::string* path);

// True for a name that the marker can hold: one path component without control characters, and not
// hidden, as a backup or a work area of the store may be, unless it is the factory profile's.
[[nodiscard]] bool isMarkerName(std::string_view dir_name);

// Fails with kApplicationError for a name that isMarkerName refuses.
Status checkMarkerName(std::string_view dir_name);

// Writes the marker and makes it writable by all, so that later runs by other users can rewrite
// it. Fails with kApplicationError when either does, or as checkMarkerName.
Status writeMarker(std::string_view dir_name);

// True when that succeeds.
[[nodiscard]] bool setCurrentProfile(std::string_view dir_name);

// Writes the marker after the service was to be stopped, with the outcome `stopped`, while `before`
// was current. If the stop failed and the daemon still runs, the log says with which profile. Fails
// as writeMarker.
Status setCurrentAfterStop(const ProfileRef& profile, const Status& stopped,
                           const ProfileIdentity& before);

// The friendly name of the profile in `dir_name`, or `dir_name` itself when its name file cannot be
// read.
std::string readFriendlyName(std::string_view dir_name);

// Changes the working directory into the current profile and stores its path. When there is no
// current profile, or it has no hip.conf, the first profile by friendly name becomes current, but
// not when the marker could not be read because of an error. Fails with kProfileNotFound when the
// store is empty, else with kApplicationError; `path` is cleared then, and the working directory
// stays as it was.
Status enterCurrent(std::string* path);

// True when that succeeds.
[[nodiscard]] bool enterCurrentProfile(std::string* path);

}  // namespace tunadm
