// Making a profile out of the factory profile.
#pragma once

#include <string>

#include "core/Status.h"
#include "profiles/ProfileRef.h"

namespace tunadm {

struct CreateRequest {
  std::string name;          // the wanted friendly name; "profile" when empty
  bool allow_rename = true;  // take name#2, name#3, ... when the name is taken
  bool activate = false;     // make it current and (re)start the service with it
  std::string system;        // the init system's name
  std::string network;       // underlay interface; empty leaves the factory's
  std::string helmsman_host;
  int helmsman_port = -1;
  std::string invitation;  // empty leaves the factory's, "###" removes it
};

// Makes a profile under the profile lock and stores it in `created`. Fails with kAuthRequired (not
// root), kInvalidArgument (a value holds a line break; nothing has been done then),
// kApplicationError (no free directory or friendly name), or the status of the file operation that
// failed. What was done before a failure stays: the next listing names the directory. With
// `activate`, kApplicationError when the profile cannot be made current, else the status of
// starting the service; a service that was stopped is started again in any case.
Status createProfile(const CreateRequest& request, ProfileRef* created);

}  // namespace tunadm
