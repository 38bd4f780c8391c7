// The program's directories for temporary files and for lock files.
#pragma once

#include <string>
#include <string_view>

namespace tunadm {

// Each ends in a slash. Found out and created (mode 0750; a failure is ignored) on first use and
// the same from then on: VRX_TMP_DIR or "/tmp/"; VRX_LOCK_DIR or "/tmp/lock/".
const std::string& temporaryDirectory();
const std::string& lockDirectory();

// The directory followed by the name.
std::string tempPath(std::string_view name);
std::string lockPath(std::string_view name);

// `value`, or `fallback` when it is null or empty, with a slash at its end.
std::string directoryFromEnvironment(const char* value, const char* fallback);

}  // namespace tunadm
