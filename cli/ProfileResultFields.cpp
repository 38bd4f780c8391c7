#include "cli/ProfileResultFields.h"

#include <vector>

namespace tunadm {
namespace {

std::string helmsmanAddress(const ProfileDetails& details) {
  if (details.helmsman_port.empty()) return details.helmsman_host;
  return details.helmsman_host + ":" + details.helmsman_port;
}

}  // namespace

void ProfileDetailsResultField::render(ValueBinder& out) const {
  std::vector<std::string> lines;
  lines.push_back("profile_name=" + details_.profile_name);
  if (!details_.helmsman_host.empty()) lines.push_back("helmsman=" + helmsmanAddress(details_));
  lines.push_back("profile_dir=" + details_.profile_dir);
  lines.push_back("network=" + details_.network);
  lines.push_back("deviceID=" + details_.device_id);
  lines.push_back("overlay_device_ip=" + details_.overlay_device_ip);
  lines.push_back("overlay_mask=" + details_.overlay_mask);
  lines.push_back("invitation=" + details_.invitation);
  lines.push_back("log_level=" + details_.log_level);
  out.addList(name(), linesOf(lines));
}

}  // namespace tunadm
