#include "profiles/ProfileCreate.h"

#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/Privilege.h"
#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "profiles/ConfigControl.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

// The first number of a dir name is arbitrary but fixed: installations have come to know it.
constexpr int kFirstNumber = 123123;
constexpr int kEndNumber = 999999;
constexpr std::string_view kCertificates = "/ca-certs";

bool holdsLineBreak(std::string_view text) { return text.find('\n') != std::string_view::npos; }

Status checkValues(const CreateRequest& request) {
  if (holdsLineBreak(request.name) || holdsLineBreak(request.network) ||
      holdsLineBreak(request.helmsman_host) || holdsLineBreak(trimmedValue(request.invitation))) {
    return Status(kInvalidArgument, "value holds a line break", "profile create");
  }
  return Status(kSuccess);
}

// The names in the store, from one listing, so that finding a free one does not have to ask for
// each. A name that appears after the listing is met when its directory cannot be made.
std::unordered_set<std::string> usedDirNames() {
  DirectoryListing listing = listDirectory(std::string(kProfilesRoot));
  std::unordered_set<std::string> used;
  for (const auto* names : {&listing.subdirectories, &listing.files, &listing.file_links,
                            &listing.directory_links, &listing.others}) {
    used.insert(names->begin(), names->end());
  }
  return used;
}

Status makeProfileDirectory(std::string* dir_name) {
  const std::unordered_set<std::string> used = usedDirNames();
  for (int number = kFirstNumber; number < kEndNumber; ++number) {
    *dir_name = "profile-" + std::to_string(number);
    if (used.contains(*dir_name)) continue;
    std::string path;
    (void)profileDirectory(*dir_name, &path);  // the name is not empty
    if (makeNewDirectory(path, 0755).ok()) return Status(kSuccess);
  }
  return Status(kApplicationError);
}

Status chooseName(const CreateRequest& request, ProfileRef* profile) {
  ProfileList profiles;
  if (!enumerateProfiles(&profiles, profile->dir_name)) return Status(kApplicationError);
  TakenNames taken;
  for (const ProfileEntry& entry : profiles) taken.add(entry.profile_name);

  const std::string wanted = request.name.empty() ? "profile" : request.name;
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
      Status copied = copyFile(from + "/" + name, to + "/" + name);
      if (!copied.ok()) return copied;
    }
  }
  return Status(kSuccess);
}

void copyCertificates(const std::string& factory, const std::string& directory) {
  const std::string from = factory + std::string(kCertificates);
  const std::string to = directory + std::string(kCertificates);
  // A factory profile need not have any; the daemon fetches those that it misses.
  if (makeDirectory(to, 0755).ok()) (void)copyFiles(from, to);
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
  return setHelmsmanAddress(profile.dir_name, request.helmsman_host, request.helmsman_port);
}

Status writeSettings(const CreateRequest& request, const ProfileRef& profile) {
  if (!request.network.empty()) {
    Status written = writeMasterInterface(profile.dir_name, request.network);
    if (!written.ok()) return written;
  }
  return writeInvitationCode(profile.dir_name, request.invitation);
}

}  // namespace

Status createProfile(const CreateRequest& request, ProfileRef* created) {
  if (!isPrivileged()) return Status(kAuthRequired);
  if (Status checked = checkValues(request); !checked.ok()) return checked;
  const ProfileLock lock;
  if (Status made = makeProfileDirectory(&created->dir_name); !made.ok()) return made;
  if (Status named = chooseName(request, created); !named.ok()) return named;
  if (Status filled = fillProfile(request, *created); !filled.ok()) return filled;
  if (Status written = writeSettings(request, *created); !written.ok()) return written;
  if (!request.activate) return Status(kSuccess);
  return Status(setCurrentProfile(created->dir_name) ? kSuccess : kApplicationError);
}

}  // namespace tunadm
