#include "cli/ListCommands.h"

#include <string>
#include <utility>

#include "core/Record.h"
#include "core/TextLines.h"
#include "fundkit/LogLevel.h"
#include "profiles/ConfigControl.h"
#include "profiles/ProfileControl.h"
#include "profiles/ProfilePaths.h"
#include "profiles/ProfileSelector.h"
#include "profiles/StoreView.h"
#include "service/Versions.h"

namespace tunadm {

void Hipcmd_GetProfiles::ProfileListResultField::render(ValueBinder& out) const {
  out.addRecords(name(), [this](const RecordReceiver& receiver) {
    for (const ProfileRef& profile : profiles_) {
      const RecordMember members[] = {{"profile_dir", profile.dir_name},
                                      {"profile_name", profile.profile_name}};
      receiver(members);
    }
  });
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

void Hipcmd_GetVersions::execute(StatusCodeResultField& result) {
  tunadm_version_.set(kTunadmVersion);
  hipapp_version_.set(readApplicationVersion(profileFile(kFactoryName, kRevisionFile)));
  result.status().reset();
}

void Hipcmd_GetHipLog::LogResultField::render(ValueBinder& out) const {
  out.addList(name(), [this](const LineReceiver& receiver) { extract_.forEachRun(receiver); });
}

void Hipcmd_GetHipLog::execute(StatusCodeResultField& result) {
  StoreView store;
  ProfileRef profile;
  result.status() = resolveSelector(selector(), &store, &profile);
  if (!result.status().ok()) return;
  profile_name_.set(profile.profile_name);
  result.status() = log_.extract().find(profileFile(profile.dir_name, kLogFile), max_lines_.value(),
                                        parseLevel(log_level_.value()));
}

}  // namespace tunadm
