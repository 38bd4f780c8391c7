// The versions of this program and of the installation that it belongs to.
#pragma once

#include <string>
#include <string_view>

namespace tunadm {

inline constexpr std::string_view kTunadmVersion = "2.2";

// The installation's version: the first line of `revision_file`, empty without such a file.
// Deliberate: this program's own version when the file cannot be read.
std::string readApplicationVersion(const std::string& revision_file);

}  // namespace tunadm
