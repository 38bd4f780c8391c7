// Giving the daemon a clean start with a profile.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"

namespace tunadm {

// Removes the daemon's temporary state files from the profile that `selector` names; stores its
// friendly name in `profile_name`. Fails with kAuthRequired (not root), as resolveSelector, or with
// kRefusedWhileRunning. Files that cannot be removed are passed over.
Status resetProfile(std::string_view selector, std::string* profile_name);

// The removal alone.
void removeStateFiles(std::string_view dir_name);

}  // namespace tunadm
