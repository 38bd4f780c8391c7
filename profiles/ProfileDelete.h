// Removing a profile.
#pragma once

#include <string_view>

#include "core/Status.h"

namespace tunadm {

// Removes the directory of the profile that `selector` names and sees to it that a current profile
// is left, by making a default one if need be. Fails with kAuthRequired (not root),
// kInvalidArgument (the factory profile, or the current one named as ".current"), as
// resolveSelector, with kRefusedWhileRunning, or with kApplicationError when something could not
// be removed.
Status deleteProfile(std::string_view selector);

}  // namespace tunadm
