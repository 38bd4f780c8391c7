// The profile commands: listing and showing profiles.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/Status.h"
#include "profiles/ProfileRef.h"

namespace tunadm {

struct ProfileListing {
  ProfileList profiles;     // sorted by friendly name
  std::string current_dir;  // empty, like current_name, when there is no current profile
  std::string current_name;
};

// Fails with kApplicationError, and `listing` empty, when the store cannot be enumerated.
Status listProfiles(ProfileListing* listing);

// What is missing on disk stays empty.
struct ProfileDetails {
  std::string profile_dir;
  std::string profile_name;
  std::vector<std::string> networks;  // the host's interfaces that could be the underlay
  std::string network;                // the one that this profile uses
  std::string device_id;
  std::string overlay_device_ip;
  std::string overlay_mask;
  std::string invitation;
  std::string helmsman_host;
  std::string helmsman_port;
  std::string log_level;
};

ProfileDetails readProfileDetails(const ProfileRef& profile);

// The details of the profile that `selector` names. Fails only as resolveSelector does, and leaves
// `details` as it was then.
Status cmdGetProfileDetails(std::string_view selector, ProfileDetails* details);

}  // namespace tunadm
