#include "profiles/StoreScan.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/DirectoryStream.h"
#include "fundkit/FileUtils.h"
#include "fundkit/SystemFailure.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

// About how many subdirectories there are: on most file systems each has a link to its parent.
std::size_t expectedCount(int directory) {
  constexpr nlink_t kMostBelieved = 100000;
  struct stat found {};
  return fstat(directory, &found) == 0 ? std::min(found.st_nlink, kMostBelieved) : 0;
}

}  // namespace

Status StoreScan::read() {
  profiles_.clear();
  by_name_.clear();
  others_.clear();
  DirectoryStream store(openDescriptor(std::string(kProfilesRoot), O_RDONLY | O_DIRECTORY));
  if (!store.valid()) return systemFailure(kOpendirFailed, "open", kProfilesRoot);
  profiles_.reserve(expectedCount(store.descriptor()));
  std::string path;
  while (const dirent* entry = store.next()) {
    std::string name = entry->d_name;
    if (name.front() == '.' || store.kindOf(*entry) != DT_DIR) {
      others_.push_back(std::move(name));
      continue;
    }
    // Right away, while the kernel's memory of the directory is in the processor's cache.
    profiles_.push_back({std::move(name), ""});
    ProfileRef& profile = profiles_.back();
    path.assign(profile.dir_name).append("/").append(kNameFile);
    if (readFirstLine(store.descriptor(), path.c_str(), &profile.profile_name) ==
        LineRead::kError) {
      return systemFailure(kReadFailed, "read", profileFile(profile.dir_name, kNameFile));
    }
  }
  return store.failed() ? systemFailure(kOpendirFailed, "read", kProfilesRoot) : Status(kSuccess);
}

void StoreScan::sortByName() {
  by_name_.clear();
  by_name_.reserve(profiles_.size());
  for (ProfileRef& profile : profiles_) by_name_.push_back(&profile);
  std::ranges::stable_sort(by_name_, {}, &ProfileRef::profile_name);
}

bool StoreScan::sound() {
  sortByName();
  return (by_name_.empty() || !by_name_.front()->profile_name.empty()) &&
         std::ranges::adjacent_find(by_name_, {}, &ProfileRef::profile_name) == by_name_.end();
}

Status StoreScan::repair() {
  by_name_.clear();
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

std::vector<std::string_view> StoreScan::entryNames() const {
  std::vector<std::string_view> names(others_.begin(), others_.end());
  for (const ProfileRef& profile : profiles_) names.push_back(profile.dir_name);
  return names;
}

TakenNames StoreScan::takenNames(std::string_view base) const {
  TakenNames taken;
  for (const ProfileRef& profile : profiles_)
    if (profile.profile_name.starts_with(base)) taken.add(profile.profile_name);
  return taken;
}

void StoreScan::takeSorted(ProfileList* list) {
  if (by_name_.empty()) sortByName();
  list->reserve(list->size() + by_name_.size());
  for (ProfileRef* profile : by_name_) list->push_back(std::move(*profile));
}

}  // namespace tunadm
