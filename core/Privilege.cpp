#include "core/Privilege.h"

#include <unistd.h>

namespace tunadm {
namespace {

PrivilegeMode current_mode = PrivilegeMode::kNever;

}  // namespace

void setPrivilegeMode(PrivilegeMode mode) { current_mode = mode; }

bool isPrivileged() {
  switch (current_mode) {
    case PrivilegeMode::kAlways:
      return true;
    case PrivilegeMode::kRootOnly:
      return getuid() == 0 && geteuid() == 0;
    case PrivilegeMode::kNever:
      break;
  }
  return false;
}

}  // namespace tunadm
