// Changing the settings of a profile.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"
#include "profiles/ProfileRef.h"

namespace tunadm {

// What is empty stays as it is. A port that is not from 1 to 65535 means 8096 with a host, and
// changes nothing without one.
struct ModifyRequest {
  std::string new_name;
  std::string helmsman_host;
  int helmsman_port = -1;
  std::string network;
  std::string invitation;  // "###" removes it
  std::string log_level;
  bool activate = false;  // restart the service around the change
  std::string system;     // the init system's name
};

// Changes the profile that `selector` names and stores it in `profile`, with its new name if it has
// one. The daemon's state files are removed along with it. With `activate`, a profile that is
// current or a daemon that may be running makes the service restart around the changes: it is
// stopped if it may be running, and started in any case.
//
// Fails as resolveSelector, with kAuthRequired (not root), kInvalidArgument (a value holds a line
// break, or a new name that is taken or reserved; nothing has been done then), or the first failure
// among stop, changes and start. Of the changes, a Helmsman or log level that cannot be changed
// ends them (kApplicationError, kWriteFailed). The state files of a running profile are not
// removed; kRefusedWhileRunning says so, unless the network or name was changed after that. A
// name that cannot be written fails as renameProfile. What was changed before a failure stays.
Status modifyProfile(std::string_view selector, const ModifyRequest& request, ProfileRef* profile);

}  // namespace tunadm
