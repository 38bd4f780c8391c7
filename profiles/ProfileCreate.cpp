#include "profiles/ProfileCreate.h"

#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/Privilege.h"
#include "fundkit/AsciiText.h"
#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "fundkit/SignalHold.h"
#include "profiles/ConfigControl.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"
#include "service/ServiceControl.h"
#include "service/ServiceStatus.h"

namespace tunadm {
namespace {

// Deliberate: the number of the first dir name is fixed.
constexpr int kFirstNumber = 123123;
constexpr int kEndNumber = 999999;
constexpr std::string_view kCertificates = "/ca-certs";

Status checkValues(const CreateRequest& request) {
  return refuseLineBreaks(
      {request.name, request.network, request.helmsman_host, trimGraphic(request.invitation)},
      "profile create");
}

// From one listing, so that finding a free name does not have to ask for each. A name that appears
// after the listing is met when its directory cannot be made.
std::unordered_set<std::string_view> usedNames(const DirectoryListing& listing) {
  std::unordered_set<std::string_view> used;
  for (const auto* names : {&listing.subdirectories, &listing.files, &listing.file_links,
                            &listing.directory_links, &listing.others}) {
    used.insert(names->begin(), names->end());
  }
  return used;
}

Status makeProfileDirectory(std::string* dir_name) {
  const DirectoryListing listing = listDirectory(std::string(kProfilesRoot));
  const std::unordered_set<std::string_view> used = usedNames(listing);
  for (int number = kFirstNumber; number < kEndNumber; ++number) {
    *dir_name = "profile-" + std::to_string(number);
    if (used.contains(*dir_name)) continue;
    std::string path;
    (void)profileDirectory(*dir_name, &path);  // the name is not empty
    if (makeNewDirectory(path, 0755).ok()) return Status(kSuccess);
    // Still nothing there: the store itself is at fault, and refuses every further name, too.
    if (isMissing(path)) break;
  }
  return Status(kApplicationError);
}

Status chooseName(const CreateRequest& request, ProfileRef* profile) {
  ProfileList profiles;
  if (!enumerateProfiles(&profiles, profile->dir_name)) return Status(kApplicationError);
  TakenNames taken;
  for (const ProfileEntry& entry : profiles) taken.add(entry.profile_name);

  const std::string wanted = request.name.empty() ? std::string(kDefaultName) : request.name;
  profile->profile_name = request.allow_rename ? taken.uniqueName(wanted) : wanted;
  return Status(taken.contains(profile->profile_name) ? kApplicationError : kSuccess);
}

// Copies the plain files of a directory, then the links that lead to plain files. Stops at the
// first failure.
Status copyFiles(const std::string& from, const std::string& to) {
  const DirectoryListing listing = listDirectory(from);
  if (!listing.status.ok()) return listing.status;
  for (const auto* names : {&listing.files, &listing.file_links}) {
    for (const std::string& name : *names) {
      const std::string entry = "/" + name;
      Status copied = copyFile(from + entry, to + entry);
      if (!copied.ok()) return copied;
    }
  }
  return Status(kSuccess);
}

void copyCertificates(const std::string& factory, const std::string& directory) {
  const std::string from = factory + std::string(kCertificates);
  const std::string to = directory + std::string(kCertificates);
  // A factory profile need not have any.
  if (makeDirectory(to, 0755).ok()) (void)copyFiles(from, to);
}

Status writeSettings(const CreateRequest& request, const std::string& dir_name) {
  if (!request.network.empty()) {
    if (Status written = writeMasterInterface(dir_name, request.network); !written.ok()) {
      return written;
    }
  }
  return writeInvitationCode(dir_name, request.invitation);
}

Status fillProfile(const CreateRequest& request, const ProfileRef& profile) {
  std::string factory;
  std::string directory;
  std::string name_file;
  (void)factoryDirectory(&factory);  // none of the names is empty
  (void)profileDirectory(profile.dir_name, &directory);
  (void)profileFile(profile.dir_name, kNameFile, &name_file);
  if (Status copied = copyFiles(factory, directory); !copied.ok()) return copied;
  if (Status named = writeLines(name_file, {profile.profile_name}); !named.ok()) return named;
  copyCertificates(factory, directory);
  Status addressed =
      setHelmsmanAddress(profile.dir_name, request.helmsman_host, request.helmsman_port);
  return addressed.ok() ? writeSettings(request, profile.dir_name) : addressed;
}

// A failure never leaves the service stopped, but a profile that is not whole is not run.
Status fillAndActivate(const CreateRequest& request, const ProfileRef& profile) {
  const bool daemon_up = isDaemonRunning() != TriState::kNo;
  const SignalHold hold;  // whoever asks for an end now would leave the service stopped
  if (daemon_up) (void)stopService(request.system, RootCheck::kYes);  // the start tells how it went
  Status filled = fillProfile(request, profile);
  if (!filled.ok()) {
    if (daemon_up) (void)startService(request.system, RootCheck::kYes);  // the failure is earlier
    return filled;
  }
  const bool made_current = setCurrentProfile(profile.dir_name);
  Status started = startService(request.system, RootCheck::kYes);
  return made_current ? started : Status(kApplicationError);
}

}  // namespace

Status createProfile(const CreateRequest& request, ProfileRef* created) {
  if (!isPrivileged()) return Status(kAuthRequired);
  if (Status checked = checkValues(request); !checked.ok()) return checked;
  const ProfileLock lock;
  if (Status made = makeProfileDirectory(&created->dir_name); !made.ok()) return made;
  if (Status named = chooseName(request, created); !named.ok()) return named;
  return request.activate ? fillAndActivate(request, *created) : fillProfile(request, *created);
}

}  // namespace tunadm
