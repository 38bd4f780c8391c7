#include "profiles/ProfileLock.h"

#include <optional>

#include "fundkit/BasicLog.h"
#include "fundkit/LockFile.h"

namespace tunadm {
namespace {

int holders = 0;
std::optional<LockFile> lock_file;

}  // namespace

ProfileLock::ProfileLock() {
  if (holders++ > 0) return;
  lock_file.emplace("profiles", Blocking::kYes);
  if (!lock_file->held()) {
    TUNADM_LOG(programLogger(), kLogWarning, sourceFileName(__FILE__), "ProfileLock",
               "going on without the profile lock");
  }
}

ProfileLock::~ProfileLock() {
  if (--holders == 0) lock_file.reset();
}

bool ProfileLock::isHeld() { return holders > 0; }

}  // namespace tunadm
