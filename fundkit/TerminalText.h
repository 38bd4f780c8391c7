// Texts of others made safe to show on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace tunadm {

// A copy with '?' in the place of each control character: C0 and DEL, and C1 as UTF-8 and as a byte
// that is not part of valid UTF-8. A terminal would obey them, or begin a new line.
std::string withoutControls(std::string_view text);

}  // namespace tunadm
