// What the lookup hands to a command that it creates.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tunadm {

struct CommandWords {
  // The word that is part of the command's name but chosen by the caller: a profile name, or the
  // request object of `json`. Empty when the command has none.
  std::string_view target;
  // The whole command line, which `help` reads. Owned by the caller of the lookup.
  std::span<const std::string> line;
};

}  // namespace tunadm
