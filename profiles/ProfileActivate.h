// Making a profile the one that the daemon runs with.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"

namespace tunadm {

// Makes the profile that `selector` names current and runs the service with it, through the init
// system named `system`; stores its friendly name in `profile_name`. Nothing is done when it is
// running already. A failure on the way never leaves the service stopped: it is started all the
// same.
//
// Asks for no privilege of its own: who may write the marker and command the init system decides.
// Fails with kInvalidArgument (empty selector), as resolveSelector, or with the first of: stop's
// status, kApplicationError (the marker cannot be written), start's status.
Status activateProfile(std::string_view selector, std::string_view system,
                       std::string* profile_name);

}  // namespace tunadm
