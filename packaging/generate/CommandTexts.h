// What the catalogue says about a command, for the manual page and the completions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/Catalogue.h"
#include "core/CommandCore.h"

namespace tunadm {

// An instance to ask for the parameters and result fields of a command.
ScopedPtr<TunadmCommandInstance> sampleOf(const CommandEntry& command);

std::vector<const InputParamBase*> shownParams(const TunadmCommandInstance& command);

// The word behind the name in `name=<...>`; empty for a parameter without a value.
std::string hintOf(const InputParamBase& param);

// Stands among values for the names of the host's network interfaces.
inline constexpr std::string_view kInterfaceValues = "<interface>";

// The values of a parameter that has only a few; empty for any other.
std::vector<std::string> valuesOf(const InputParamBase& param);

// `parts` with `separator` between them.
std::string joined(const std::vector<std::string>& parts, std::string_view separator);

}  // namespace tunadm
