// The lookup of a command by the leading words of a command line.
#pragma once

#include <string>
#include <vector>

#include "core/CommandCore.h"
#include "json/ScopedRelease.h"

namespace tunadm {

// Creates the command that the leading words of `words` name; empty when there is none. Removes a
// first word that repeats the program's name. Stores in `consumed` how many words named the
// command, -1 for none. The command keeps views into `words`, which must outlive it unchanged.
[[nodiscard]] ScopedPtr<TunadmCommandInstance> lookUpCommand(std::vector<std::string>* words,
                                                             int* consumed);

}  // namespace tunadm
