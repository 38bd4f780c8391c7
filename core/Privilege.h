// Who may change the system.
#pragma once

namespace tunadm {

enum class PrivilegeMode {
  kNever = 0,
  kAlways = 1,
  kRootOnly = 2,  // real and effective user ID are both 0
};

// Process-wide; set once at start. Until then, nothing is privileged.
void setPrivilegeMode(PrivilegeMode mode);

// Each operation that changes the system asks this at the moment it acts, and reports
// kAuthRequired when the answer is no.
[[nodiscard]] bool isPrivileged();

}  // namespace tunadm
