#include "profiles/ProfileControl.h"

#include <utility>

#include "fundkit/BasicLog.h"
#include "profiles/ConfigControl.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileSelector.h"

namespace tunadm {
namespace {

// Each reader leaves its field empty when it finds nothing, which is all there is to report.
void readSettings(const std::string& dir_name, ProfileDetails* details) {
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
  if (!enumerateProfiles(&listing->profiles)) return Status(kApplicationError);
  ProfileIdentity current = lookUpCurrentProfile();
  listing->current_dir = std::move(current.dir_name);
  listing->current_name = std::move(current.profile_name);
  return Status(kSuccess);
}

Status cmdGetProfileDetails(std::string_view selector, ProfileDetails* details) {
  ProfileRef profile;
  if (Status found = resolveSelector(selector, &profile); !found.ok()) return found;
  *details = ProfileDetails();
  details->profile_dir = profile.dir_name;
  details->profile_name = profile.profile_name;
  if (!read_networks(&details->networks)) {
    TUNADM_LOG(programLogger(), kLogError, "ProfileControl.cpp", "cmdGetProfileDetails",
               "could not execute read_networks");
  }
  readSettings(profile.dir_name, details);
  return Status(kSuccess);
}

}  // namespace tunadm
