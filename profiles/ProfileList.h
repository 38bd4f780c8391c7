// The set of profiles on disk.
#pragma once

#include "core/Status.h"
#include "profiles/ProfileRef.h"

namespace tunadm {

// Appends every profile to `list`, sorted by friendly name (bytewise). A profile without a friendly
// name, or with one that an earlier profile has, is given a unique one on disk; for that the
// profile lock is taken, so that a profile which is just being created keeps its name. Fails with
// kApplicationError, and `list` as it was, when the store cannot be listed or a name cannot be
// written. The log tells an ordinary user whose names these are; the status has no cause then.
Status listStore(ProfileList* list);

}  // namespace tunadm
