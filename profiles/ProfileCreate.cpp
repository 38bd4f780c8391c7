#include "profiles/ProfileCreate.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <string_view>
#include <vector>

#include "core/Privilege.h"
#include "fundkit/AsciiText.h"
#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "profiles/ConfigControl.h"
#include "profiles/CurrentProfile.h"
#include "profiles/LineBreaks.h"
#include "profiles/PassedFailure.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"
#include "profiles/StoreScan.h"
#include "profiles/StoreView.h"
#include "service/ServiceRestart.h"

namespace tunadm {
namespace {

// Deliberate: the number of the first dir name is fixed.
constexpr int kFirstNumber = 123123;
constexpr int kEndNumber = 999999;
constexpr std::string_view kDirPrefix = "profile-";
constexpr std::string_view kCertificates = "/ca-certs";

Status checkValues(const CreateRequest& request) {
  return refuseLineBreaks(
      {request.name, request.network, request.helmsman_host, trimGraphic(request.invitation)},
      "profile create");
}

std::string dirName(int number) { return std::string(kDirPrefix) + std::to_string(number); }

// The number of a dir name such as new profiles get; less than kFirstNumber for any other.
int numberOf(std::string_view dir_name) {
  int number = 0;
  if (dir_name.starts_with(kDirPrefix)) {
    const std::string_view digits = dir_name.substr(kDirPrefix.size());
    (void)std::from_chars(digits.data(), digits.data() + digits.size(), number);
  }
  return dir_name == dirName(number) ? number : 0;
}

std::vector<int> sortedNumbers(const StoreScan& scan) {
  std::vector<int> numbers;
  for (const std::string_view name : scan.entryNames()) numbers.push_back(numberOf(name));
  std::ranges::sort(numbers);
  return numbers;
}

// Makes the directory of the first number that no entry of the store has.
Status makeProfileDirectory(const StoreScan& scan, std::string* dir_name) {
  const std::vector<int> used = sortedNumbers(scan);
  Status made(kApplicationError);
  for (int number = kFirstNumber; number < kEndNumber; ++number) {
    if (std::ranges::binary_search(used, number)) continue;
    *dir_name = dirName(number);
    made = makeNewDirectory(profileDirectory(*dir_name), 0755);
    // Unless the name is taken, the store itself is at fault, and would refuse every other name
    // too.
    if (made.ok() || errno != EEXIST) break;
  }
  if (!made.ok()) made.setCode(kApplicationError);
  return made;
}

Status chooseName(const CreateRequest& request, StoreScan* scan, std::string* name) {
  if (!scan->sound()) {
    Status repaired = scan->repair();
    if (!repaired.ok()) return Status(kApplicationError).because(repaired.cause());
  }
  *name = request.name.empty() ? std::string(kDefaultName) : request.name;
  TakenNames taken = scan->takenNames(*name);
  if (request.allow_rename) *name = taken.uniqueName(*name);
  return Status(taken.contains(*name) ? kApplicationError : kSuccess);
}

// Finds a directory and a name for the profile. The store is read before the directory is made, so
// that the new profile is neither counted nor named itself.
Status beginProfile(const CreateRequest& request, ProfileRef* profile) {
  StoreScan scan;
  Status read = scan.read();
  if (!read.ok()) return Status(kApplicationError).because(read.cause());
  if (Status made = makeProfileDirectory(scan, &profile->dir_name); !made.ok()) return made;
  return chooseName(request, &scan, &profile->profile_name);
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

// Without its certificates a profile counts as made all the same.
void copyCertificates(const std::string& factory, const std::string& directory) {
  const std::string from = factory + std::string(kCertificates);
  const std::string to = directory + std::string(kCertificates);
  Status copied = makeDirectory(to, 0755);
  if (copied.ok()) copied = copyFiles(from, to);
  // A factory profile need not have any.
  if (!copied.ok() && !isMissing(from)) logPassedFailure("certificates not copied", copied);
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
  const std::string factory = factoryDirectory();
  const std::string directory = profileDirectory(profile.dir_name);
  if (Status copied = copyFiles(factory, directory); !copied.ok()) return copied;
  Status named = replaceFile(profileFile(profile.dir_name, kNameFile), profile.profile_name + "\n",
                             kPrivateFileMode);
  if (!named.ok()) return named;
  copyCertificates(factory, directory);
  Status addressed =
      writeNewHelmsmanAddress(profile.dir_name, request.helmsman_host, request.helmsman_port);
  if (!addressed.ok()) return addressed;
  if (Status written = writeSettings(request, profile.dir_name); !written.ok()) return written;
  if (Status flushed = flushTree(directory); !flushed.ok()) return flushed;
  return flushDirectory(std::string(kProfilesRoot));
}

// A profile that is not whole is not run: only a service that was stopped is started then.
Status fillAndActivate(const CreateRequest& request, const ProfileRef& profile,
                       ServiceRestart* service) {
  StoreView store;
  Status stopped(kSuccess);  // a failure does not matter: the start tells how it went
  if (store.daemon() != TriState::kNo) {
    stopped = service->stop();
    if (!service->startIsDue()) return stopped;
  }
  if (Status filled = fillProfile(request, profile); !filled.ok()) return filled;
  service->requestStart();
  return setCurrentAfterStop(profile, stopped, store.current());
}

Status makeProfile(const CreateRequest& request, ServiceRestart* service, ProfileRef* created) {
  const ProfileLock lock;
  if (Status begun = beginProfile(request, created); !begun.ok()) return begun;
  return request.activate ? fillAndActivate(request, *created, service)
                          : fillProfile(request, *created);
}

}  // namespace

Status createProfile(const CreateRequest& request, ProfileRef* created) {
  if (!isPrivileged()) return Status(kAuthRequired);
  if (Status checked = checkValues(request); !checked.ok()) return checked;
  ServiceRestart service(request.system, RootCheck::kYes);
  return service.finish(makeProfile(request, &service, created));
}

}  // namespace tunadm
