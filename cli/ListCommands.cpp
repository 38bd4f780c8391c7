#include "cli/ListCommands.h"

#include <utility>
#include <vector>

#include "profiles/ConfigControl.h"
#include "profiles/ProfileControl.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {

void Hipcmd_GetProfiles::ProfileListResultField::render(ValueBinder& out) const {
  std::vector<std::string> lines;
  lines.reserve(profiles_.size());
  for (const ProfileEntry& entry : profiles_) {
    lines.push_back(entry.dir_name + ": " + entry.profile_name);
  }
  out.addList(name(), lines);
}

void Hipcmd_GetProfiles::execute(StatusCodeResultField& result) {
  ProfileListing listing;
  result.status() = listProfiles(&listing);
  profiles_.profiles() = std::move(listing.profiles);
  current_dir_.set(listing.current_dir);
  current_name_.set(listing.current_name);
  root_dir_.set(kProfilesRoot);
}

void Hipcmd_GetInterfaces::execute(StatusCodeResultField& result) {
  result.status().setCode(read_networks(&interfaces_.lines()) ? kSuccess : kGetifaddrsFailed);
}

// The work of these commands is not built yet: their status stays the failure that it starts with.
void Hipcmd_GetVersions::execute(StatusCodeResultField&) {}
void Hipcmd_GetHipLog::execute(StatusCodeResultField&) {}

}  // namespace tunadm
