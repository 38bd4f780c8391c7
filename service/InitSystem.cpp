#include "service/InitSystem.h"

#include "fundkit/FileUtils.h"

namespace tunadm {

std::string_view probeInitSystem() {
  if (pathExists("/opt/vrx//.systemctl")) return "systemd";
  if (pathExists("/etc/init.d/quenlay")) return "initd";
  return "";
}

}  // namespace tunadm
