#include "profiles/ProfileList.h"

#include "core/Privilege.h"
#include "fundkit/BasicLog.h"
#include "profiles/ProfileLock.h"
#include "profiles/StoreScan.h"

namespace tunadm {
namespace {

// What was read without the lock may be a profile that another process has not named yet.
Status repairUnderLock(StoreScan* scan) {
  const bool read_under_lock = ProfileLock::isHeld();
  const ProfileLock lock;
  if (!read_under_lock) {
    if (Status read = scan->read(); !read.ok()) return read;
  }
  return scan->repair();
}

void sayWhoReadsNames(const Status& refused) {
  TUNADM_LOG(programLogger(), kLogWarning, sourceFileName(__FILE__), "listStore",
             "the names of profiles can be read and repaired by root only")
      .detail("%s", refused.cause().c_str());
}

Status readSoundStore(StoreScan* scan) {
  Status read = scan->read();
  return read.ok() && !scan->sound() ? repairUnderLock(scan) : read;
}

}  // namespace

Status listStore(ProfileList* list) {
  StoreScan scan;
  if (Status read = readSoundStore(&scan); !read.ok()) {
    // Anyone may list the directory, so that failure has another reason.
    if (isPrivileged() || read.code() == kOpendirFailed) {
      return Status(kApplicationError).because(read.cause());
    }
    sayWhoReadsNames(read);
    return Status(kApplicationError);
  }
  scan.takeSorted(list);
  return Status(kSuccess);
}

}  // namespace tunadm
