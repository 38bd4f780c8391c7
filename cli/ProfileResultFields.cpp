#include "cli/ProfileResultFields.h"

#include <vector>

#include "core/Record.h"

namespace tunadm {
namespace {

std::string helmsmanAddress(const ProfileDetails& details) {
  if (details.helmsman_port.empty()) return details.helmsman_host;
  return details.helmsman_host + ":" + details.helmsman_port;
}

}  // namespace

void ProfileDetailsResultField::render(ValueBinder& out) const {
  std::vector<RecordMember> members = {
      {"profile_dir", details_.profile_dir, 3},
      {"profile_name", details_.profile_name, 1},
      {"network", details_.network, 4},
      {.name = "networks", .items = &details_.networks},
      {"deviceID", details_.device_id, 5},
      {"overlay_device_ip", details_.overlay_device_ip, 6},
      {"overlay_mask", details_.overlay_mask, 7},
      {"invitation", details_.invitation, 8},
  };
  const std::string helmsman = helmsmanAddress(details_);
  if (!details_.helmsman_host.empty()) members.push_back({"helmsman", helmsman, 2});
  members.push_back({"log_level", details_.log_level, 9});
  out.addRecord(name(), members);
}

}  // namespace tunadm
