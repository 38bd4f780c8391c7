// Which init system runs the service on this host.
#pragma once

#include <string_view>

namespace tunadm {

// "systemd" or "initd" by the marker files of the installation, empty when neither is there.
std::string_view probeInitSystem();

}  // namespace tunadm
