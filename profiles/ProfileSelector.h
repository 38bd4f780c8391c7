// How a command line names a profile.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"

namespace tunadm {

struct ProfileRef {
  std::string dir_name;
  std::string profile_name;  // the friendly name
};

// The selector for the profile in `dir_name`.
std::string selectorOf(std::string_view dir_name);

// True for the selectors that name the current profile, whichever it is, but for the empty one.
bool namesCurrentProfile(std::string_view selector);

// Finds the profile that `selector` names:
//   "", ".current", "--active"  the current profile
//   "dir=<dir name>"            the profile in that directory
//   ".factory"                  the factory profile, unchecked, always kSuccess
//   anything else               the profile of that friendly name
// Success is kSuccess, or for the current profile kProfileRunning when the daemon runs and
// kProfileActive otherwise. Fails with kProfileNotFound, or kApplicationError when the store cannot
// be enumerated (which may repair friendly names on the way); `profile` is left as it was then.
Status resolveSelector(std::string_view selector, ProfileRef* profile);

}  // namespace tunadm
