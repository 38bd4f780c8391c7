// Giving a profile another friendly name.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"

namespace tunadm {

// True when a profile may be given this name: it must name no profile yet, in any of the ways in
// which a selector can.
bool isNewName(std::string_view name);

// Writes `new_name` as the friendly name of the profile that `selector` names. Fails with
// kAuthRequired (not root), as resolveSelector, with kInvalidArgument (no name, one that is taken
// or reserved, a line break), or as writeLines.
Status renameProfile(std::string_view selector, const std::string& new_name);

}  // namespace tunadm
