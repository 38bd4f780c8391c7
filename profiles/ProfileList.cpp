#include "profiles/ProfileList.h"

#include <iterator>
#include <utility>

#include "core/Privilege.h"
#include "fundkit/BasicLog.h"
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

void sayWhoReadsNames() {
  TUNADM_LOG(programLogger(), kLogWarning, sourceFileName(__FILE__), "enumerateProfiles",
             "the names of profiles can be read and repaired by root only");
}

bool readSoundStore(StoreScan* scan) {
  return scan->read() && (scan->sound() || repairUnderLock(scan));
}

}  // namespace

bool enumerateProfiles(ProfileList* list) {
  StoreScan scan;
  if (!readSoundStore(&scan)) {
    if (!isPrivileged()) sayWhoReadsNames();
    return false;
  }
  ProfileList sorted = scan.takeSorted();
  std::move(sorted.begin(), sorted.end(), std::back_inserter(*list));
  return true;
}

}  // namespace tunadm
