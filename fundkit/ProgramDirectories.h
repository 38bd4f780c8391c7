// The program's directories for temporary files and for lock files.
#pragma once

#include <string>
#include <string_view>

namespace tunadm {

// Each ends in a slash. Determined and created (mode 0750; a failure is ignored) on first use and
// the same from then on: VRX_TMP_DIR or "/tmp/"; VRX_LOCK_DIR or "/tmp/lock/". A variable that is
// empty, or whose bearer has been given more rights than the caller (secure_getenv(3)), does not
// count.
const std::string& temporaryDirectory();
const std::string& lockDirectory();

// The directory followed by the name.
std::string tempPath(std::string_view name);
std::string lockPath(std::string_view name);

}  // namespace tunadm
