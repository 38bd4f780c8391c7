#include "cli/ListCommands.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/TextLines.h"
#include "fundkit/FileUtils.h"
#include "fundkit/LogLevel.h"
#include "profiles/ConfigControl.h"
#include "profiles/ProfileControl.h"
#include "profiles/ProfilePaths.h"
#include "profiles/ProfileSelector.h"

namespace tunadm {
namespace {

constexpr std::string_view kTunadmVersion = "2.2";
constexpr int kMostLogLines = 100000;

// Empty when the factory profile has no such file. Deliberate: this program's own version when it
// cannot be read.
std::string readApplicationVersion() {
  std::string path;
  std::string version;
  (void)profileFile(kFactoryName, kRevisionFile, &path);  // neither name is empty
  if (!readFirstLine(path, &version).ok() && isRegularFile(path)) version = kTunadmVersion;
  return version;
}

}  // namespace

void Hipcmd_GetProfiles::ProfileListResultField::render(ValueBinder& out) const {
  out.addList(name(), [this](const LineReceiver& receiver) {
    std::string line;
    for (const ProfileEntry& entry : profiles_) {
      line.assign(entry.dir_name).append(": ").append(entry.profile_name);
      receiver(line);
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
  hipapp_version_.set(readApplicationVersion());
  result.status().reset();
}

void Hipcmd_GetHipLog::LogResultField::render(ValueBinder& out) const {
  out.addList(name(), [this](const LineReceiver& receiver) { extract_.print(receiver); });
}

void Hipcmd_GetHipLog::execute(StatusCodeResultField& result) {
  ProfileRef profile;
  result.status() = resolveSelector(selector(), &profile);
  if (!result.status().ok()) return;
  profile_name_.set(profile.profile_name);
  int max_lines = max_lines_.value();
  if (max_lines < 0) max_lines = kDefaultLogLines;
  std::string path;
  (void)profileFile(profile.dir_name, kLogFile, &path);  // neither name is empty
  result.status() =
      log_.extract().find(path, std::min(max_lines, kMostLogLines), parseLevel(log_level_.value()));
}

}  // namespace tunadm
