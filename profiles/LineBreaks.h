// Values for files that hold one setting a line.
#pragma once

#include <initializer_list>
#include <string_view>

#include "core/Status.h"

namespace tunadm {

// kInvalidArgument with details that say so, and `context`, when one of the values holds a line
// feed: written into a file, it would make a line of its own.
Status refuseLineBreaks(std::initializer_list<std::string_view> values, std::string_view context);

}  // namespace tunadm
