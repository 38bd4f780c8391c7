// Giving the daemon a clean start with a profile.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"
#include "profiles/ProfileRef.h"
#include "profiles/StoreView.h"

namespace tunadm {

// Removes the daemon's temporary state files from the profile that `selector` names; stores its
// friendly name in `profile_name`. Fails with kAuthRequired (not root), as resolveSelector, or with
// kRefusedWhileRunning. Files that cannot be removed are passed over.
Status resetProfile(std::string_view selector, std::string* profile_name);

// The same for a profile that was found in `store`; the caller is privileged and holds the profile
// lock. Fails with kRefusedWhileRunning.
Status clearState(const ProfileRef& profile, StoreView* store);

// The removal alone.
void removeStateFiles(const ProfileRef& profile);

}  // namespace tunadm
