// Giving a profile another friendly name.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"
#include "profiles/ProfileRef.h"

namespace tunadm {

// Makes `new_name` the friendly name of the profile that `selector` names. Fails with kAuthRequired
// (not root), as resolveSelector, with kInvalidArgument (no name, one that is taken or reserved, a
// line break), or as replaceFile.
Status renameProfile(std::string_view selector, const std::string& new_name);

// The writing alone: the caller holds the profile lock, and checkNewName has found nothing against
// the name. Nothing is written when the profile has that name already. Fails as replaceFile.
Status writeFriendlyName(const ProfileRef& profile, const std::string& new_name);

}  // namespace tunadm
