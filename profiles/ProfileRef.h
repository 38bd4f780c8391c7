// A profile as commands pass it on: it is looked up once, and then known.
#pragma once

#include <string>
#include <vector>

namespace tunadm {

struct ProfileRef {
  std::string dir_name;
  std::string profile_name;  // the friendly name
};

using ProfileList = std::vector<ProfileRef>;

}  // namespace tunadm
