// What the manual page says about parameters and results, which the catalogue only names. Whatever
// has no text ends the program, so that no build has a page with a gap.
#pragma once

#include <string_view>

namespace tunadm {

// Plain sentences about the parameter of the command of that name.
std::string_view paramText(std::string_view command, std::string_view param);

// In mdoc, a sentence's part: the lines of a list that is printed without its name.
std::string_view listText(std::string_view field);

}  // namespace tunadm
