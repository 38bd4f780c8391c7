// How a command line names a profile.
#pragma once

#include <string_view>

#include "core/Status.h"
#include "profiles/ProfileRef.h"
#include "profiles/StoreView.h"

namespace tunadm {

// Finds the profile that `selector` names:
//   "", ".current", "--active"  the current profile
//   "dir=<dir name>"            the profile in that directory
//   ".factory"                  the factory profile, unchecked, always kSuccess
//   anything else               the profile of that friendly name
// Success is kSuccess, or for the current profile kProfileRunning when the daemon runs and
// kProfileActive otherwise. Fails with kProfileNotFound, or kApplicationError when the store cannot
// be enumerated (which may repair friendly names on the way); `profile` is left as it was then.
Status resolveSelector(std::string_view selector, StoreView* store, ProfileRef* profile);

// Whether a profile may be given this name: it must name no profile yet, in any of the ways in
// which a selector can. If not, or if that cannot be known, fails with kInvalidArgument and
// `context`.
Status checkNewName(std::string_view name, std::string_view context, StoreView* store);

}  // namespace tunadm
