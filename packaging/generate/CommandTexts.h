// What parameters say about their values, for the manual page and the completions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/InputParam.h"

namespace tunadm {

// Stands among values for the names of the host's network interfaces.
inline constexpr std::string_view kInterfaceValues = "<interface>";

// The values of a parameter that has only a few; empty for any other.
std::vector<std::string> valuesOf(const InputParamBase& param);

// `parts` with `separator` between them.
std::string joined(const std::vector<std::string>& parts, std::string_view separator);

}  // namespace tunadm
