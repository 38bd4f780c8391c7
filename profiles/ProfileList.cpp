#include "profiles/ProfileList.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

constexpr int kLastNumber = 999999;

struct StoreScan {
  ProfileList accepted;
  ProfileList duplicates;  // with the name that is taken
  ProfileList unnamed;     // with the name that they are to be based on
  TakenNames taken;

  void accept(ProfileEntry entry) {
    taken.add(entry.profile_name);
    accepted.push_back(std::move(entry));
  }
};

void classify(std::string dir_name, StoreScan* scan) {
  std::string path;
  std::string name;
  const bool named = profileFile(dir_name, kNameFile, &path) && readFirstLine(path, &name).ok();
  if (!named || name.empty()) {
    scan->unnamed.push_back({std::move(dir_name), std::string(kDefaultName)});
  } else if (scan->taken.contains(name)) {
    scan->duplicates.push_back({std::move(dir_name), std::move(name)});
  } else {
    scan->accept({std::move(dir_name), std::move(name)});
  }
}

bool scanStore(std::string_view left_out, StoreScan* scan) {
  DirectoryListing listing = listDirectory(std::string(kProfilesRoot));
  if (!listing.status.ok()) return false;
  for (std::string& dir_name : listing.subdirectories) {
    if (dir_name.front() == '.' || dir_name == left_out) continue;
    classify(std::move(dir_name), scan);
  }
  return true;
}

bool repairNames(ProfileList* broken, StoreScan* scan) {
  for (ProfileEntry& entry : *broken) {
    entry.profile_name = scan->taken.uniqueName(entry.profile_name);
    std::string path;
    if (!profileFile(entry.dir_name, kNameFile, &path) ||
        !writeLines(path, {entry.profile_name}).ok()) {
      return false;
    }
    scan->accept(std::move(entry));
  }
  return true;
}

// What the first look found may be a profile that another process has not named yet, so the repair
// looks afresh under the lock.
bool repairStore(std::string_view left_out, StoreScan* scan) {
  const ProfileLock lock;
  *scan = StoreScan();
  return scanStore(left_out, scan) && repairNames(&scan->duplicates, scan) &&
         repairNames(&scan->unnamed, scan);
}

}  // namespace

std::string TakenNames::uniqueName(const std::string& base) {
  if (!names_.contains(base)) return base;
  int& number = next_number_.try_emplace(base, 2).first->second;
  for (; number <= kLastNumber; ++number) {
    std::string candidate = base + "#" + std::to_string(number);
    if (!names_.contains(candidate)) return candidate;
  }
  return base;
}

bool enumerateProfiles(ProfileList* list, std::string_view left_out) {
  StoreScan scan;
  if (!scanStore(left_out, &scan)) return false;
  const bool broken = !scan.duplicates.empty() || !scan.unnamed.empty();
  if (broken && !repairStore(left_out, &scan)) return false;
  std::stable_sort(scan.accepted.begin(), scan.accepted.end(),
                   [](const ProfileEntry& left, const ProfileEntry& right) {
                     return left.profile_name < right.profile_name;
                   });
  std::move(scan.accepted.begin(), scan.accepted.end(), std::back_inserter(*list));
  return true;
}

}  // namespace tunadm
