// The current profile: the one that the daemon runs with, named by the store's marker file.
#pragma once

#include <string>
#include <string_view>

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

// Reads the marker. Every local user can write it and root acts on it: a text that is not one path
// component, or that names something other than a real directory, counts as no current profile. A
// directory that does not exist (any more) still is what the marker names.
ProfileIdentity lookUpCurrentProfile();

// Each clears `path` and returns false when there is no current profile (or `file_name` is empty).
bool currentProfileDirectory(std::string* path);
bool currentProfileFile(std::string_view file_name, std::string* path);

// Writes the marker and makes it writable by all, so that later runs by other users can rewrite
// it. False when either fails, or when the name would not come back as one line.
bool setCurrentProfile(std::string_view dir_name);

// The friendly name of the profile in `dir_name`, or `dir_name` itself when its name file cannot be
// read.
std::string readFriendlyName(std::string_view dir_name);

// Changes the working directory into the current profile and stores its path. When there is no
// current profile, or it has no hip.conf, the first profile by friendly name becomes current. False
// (with `path` cleared and the working directory as it was) when that fails or there is no profile.
bool enterCurrentProfile(std::string* path);

}  // namespace tunadm
