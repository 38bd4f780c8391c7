#include "profiles/StoreScan.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/types.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/DirectoryStream.h"
#include "fundkit/FileUtils.h"
#include "fundkit/SystemFailure.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

bool byName(const ProfileRef& left, const ProfileRef& right) {
  return left.profile_name < right.profile_name;
}

}  // namespace

Status StoreScan::read() {
  profiles_.clear();
  others_.clear();
  DirectoryStream store(openDescriptor(std::string(kProfilesRoot), O_RDONLY | O_DIRECTORY));
  if (!store.valid()) return systemFailure(kOpendirFailed, "open", kProfilesRoot);
  while (const dirent* entry = store.next()) {
    std::string name = entry->d_name;
    if (name.front() == '.' || store.kindOf(*entry) != DT_DIR) {
      others_.push_back(std::move(name));
    } else {
      profiles_.push_back({std::move(name), ""});
    }
  }
  if (store.failed()) return systemFailure(kOpendirFailed, "read", kProfilesRoot);
  return readNames(store.descriptor());
}

Status StoreScan::readNames(int store) {
  std::string path;
  for (ProfileRef& profile : profiles_) {
    path.assign(profile.dir_name).append("/").append(kNameFile);
    if (readFirstLine(store, path.c_str(), &profile.profile_name) == LineRead::kError) {
      return systemFailure(kReadFailed, "read", profileFile(profile.dir_name, kNameFile));
    }
  }
  return Status(kSuccess);
}

bool StoreScan::sound() const {
  std::unordered_set<std::string_view> names;
  return std::all_of(profiles_.begin(), profiles_.end(), [&names](const ProfileRef& profile) {
    return !profile.profile_name.empty() && names.insert(profile.profile_name).second;
  });
}

Status StoreScan::repair() {
  TakenNames taken;
  std::vector<ProfileRef*> duplicates;
  std::vector<ProfileRef*> unnamed;
  for (ProfileRef& profile : profiles_) {
    if (profile.profile_name.empty()) {
      unnamed.push_back(&profile);
    } else if (taken.contains(profile.profile_name)) {
      duplicates.push_back(&profile);
    } else {
      taken.add(profile.profile_name);
    }
  }
  for (ProfileRef* profile : unnamed) profile->profile_name = kDefaultName;
  duplicates.insert(duplicates.end(), unnamed.begin(), unnamed.end());
  std::vector<FileContent> files;
  for (ProfileRef* profile : duplicates) {
    std::string& name = profile->profile_name;
    name = taken.uniqueName(name);
    taken.add(name);
    files.push_back({profileFile(profile->dir_name, kNameFile), name + "\n", kPrivateFileMode});
  }
  return replaceFiles(files);
}

std::unordered_set<std::string_view> StoreScan::entryNames() const {
  std::unordered_set<std::string_view> names(others_.begin(), others_.end());
  for (const ProfileRef& profile : profiles_) names.insert(profile.dir_name);
  return names;
}

TakenNames StoreScan::takenNames() const {
  TakenNames taken;
  for (const ProfileRef& profile : profiles_) taken.add(profile.profile_name);
  return taken;
}

ProfileList StoreScan::takeSorted() {
  std::stable_sort(profiles_.begin(), profiles_.end(), byName);
  return std::move(profiles_);
}

}  // namespace tunadm
