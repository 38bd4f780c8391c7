// Failures that a command passes over.
#pragma once

#include <string_view>

#include "core/Status.h"

namespace tunadm {

// Logs a failure that does not make the command fail, as a WARNING: `what` was not done, and its
// cause. Nothing for a success.
void logPassedFailure(std::string_view what, const Status& outcome);

}  // namespace tunadm
