#include "profiles/StoreScan.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

std::string readName(const std::string& dir_name) {
  std::string name;
  (void)readFirstLine(profileFile(dir_name, kNameFile), &name);  // leaves it empty then
  return name;
}

bool writeName(const ProfileRef& profile) {
  return writeLines(profileFile(profile.dir_name, kNameFile), {profile.profile_name}).ok();
}

bool byName(const ProfileRef& left, const ProfileRef& right) {
  return left.profile_name < right.profile_name;
}

}  // namespace

bool StoreScan::read() {
  profiles_.clear();
  others_.clear();
  DirectoryListing listing = listDirectory(std::string(kProfilesRoot));
  if (!listing.status.ok()) return false;
  for (std::string& dir_name : listing.subdirectories) {
    if (dir_name.front() == '.') continue;
    std::string name = readName(dir_name);
    profiles_.push_back({std::move(dir_name), std::move(name)});
  }
  for (auto* names :
       {&listing.files, &listing.file_links, &listing.directory_links, &listing.others}) {
    std::move(names->begin(), names->end(), std::back_inserter(others_));
  }
  return true;
}

bool StoreScan::sound() const {
  std::unordered_set<std::string_view> names;
  return std::all_of(profiles_.begin(), profiles_.end(), [&names](const ProfileRef& profile) {
    return !profile.profile_name.empty() && names.insert(profile.profile_name).second;
  });
}

bool StoreScan::repair() {
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
  for (ProfileRef* profile : duplicates) {
    profile->profile_name = taken.uniqueName(profile->profile_name);
    if (!writeName(*profile)) return false;
    taken.add(profile->profile_name);
  }
  return true;
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
