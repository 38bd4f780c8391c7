// The support bundle, which a script of the installation writes.
#pragma once

#include "core/Status.h"

namespace tunadm {

// Runs the bundle script through the shell; its output goes where this process's own goes. Fails
// with kSystemFailed when the shell could not run it, else with kApplicationError when it did not
// exit with 0.
Status writeSupportBundle();

}  // namespace tunadm
