#include "profiles/ProfileList.h"

#include <iterator>
#include <utility>

#include "profiles/ProfileLock.h"
#include "profiles/StoreScan.h"

namespace tunadm {
namespace {

// What was read without the lock may be a profile that another process has not named yet.
bool repairUnderLock(StoreScan* scan) {
  const bool read_under_lock = ProfileLock::isHeld();
  const ProfileLock lock;
  return (read_under_lock || scan->read()) && scan->repair();
}

}  // namespace

bool enumerateProfiles(ProfileList* list) {
  StoreScan scan;
  if (!scan.read()) return false;
  if (!scan.sound() && !repairUnderLock(&scan)) return false;
  ProfileList sorted = scan.takeSorted();
  std::move(sorted.begin(), sorted.end(), std::back_inserter(*list));
  return true;
}

}  // namespace tunadm
