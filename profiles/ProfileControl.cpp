#include "profiles/ProfileControl.h"

#include <utility>

#include "fundkit/BasicLog.h"
#include "profiles/ConfigControl.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfileSelector.h"
#include "profiles/StoreView.h"

namespace tunadm {
namespace {

void readNetworks(ProfileDetails* details) {
  if (read_networks(&details->networks)) return;
  TUNADM_LOG(programLogger(), kLogError, "ProfileControl.cpp", "cmdGetProfileDetails",
             "could not execute read_networks");
}

// Each reader leaves its field empty when it finds nothing, which is all there is to report.
void readSettings(ProfileDetails* details) {
  const std::string& dir_name = details->profile_dir;
  (void)readMasterInterface(dir_name, &details->network);
  (void)readDeviceId(dir_name, &details->device_id);
  OverlaySettings overlay = readOverlaySettings(dir_name);
  details->overlay_device_ip = std::move(overlay.device_ip);
  details->overlay_mask = std::move(overlay.device_mask);
  details->invitation = std::move(overlay.invitation);
  (void)readHelmsmanAddress(dir_name, &details->helmsman_host, &details->helmsman_port);
  (void)readLogLevel(dir_name, &details->log_level);
}

}  // namespace

Status listProfiles(ProfileListing* listing) {
  *listing = ProfileListing();
  if (Status listed = listStore(&listing->profiles); !listed.ok()) return listed;
  ProfileIdentity current = lookUpCurrentProfile();
  listing->current_dir = std::move(current.dir_name);
  listing->current_name = std::move(current.profile_name);
  return Status(kSuccess);
}

ProfileDetails readProfileDetails(const ProfileRef& profile) {
  ProfileDetails details;
  details.profile_dir = profile.dir_name;
  details.profile_name = profile.profile_name;
  readNetworks(&details);
  readSettings(&details);
  return details;
}

Status cmdGetProfileDetails(std::string_view selector, ProfileDetails* details) {
  StoreView store;
  ProfileRef profile;
  if (Status found = resolveSelector(selector, &store, &profile); !found.ok()) return found;
  *details = readProfileDetails(profile);
  return Status(kSuccess);
}

}  // namespace tunadm
