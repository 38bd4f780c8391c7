// What the manual page says about parameters and results, which the catalogue only names. A missing
// text ends the program, so that no page is built with a gap.
#pragma once

#include <span>
#include <string_view>

#include "core/Status.h"

namespace tunadm {

// A status that commands return, and in plain sentences when they do.
struct StatusCause {
  StatusCode code;
  std::string_view cause;
};

// All of them, in ascending order. The others in core/Status.h have no user.
std::span<const StatusCause> statusCauses();

// Plain sentences about the parameter of the command of that name.
std::string_view paramText(std::string_view command, std::string_view param);

// In mdoc, part of a sentence: what a list prints that is printed without its name.
std::string_view listText(std::string_view field);

}  // namespace tunadm
