// Which entries of the host's interface table can be an underlay.
#pragma once

#include <ifaddrs.h>

namespace tunadm {

// True for an entry that has an IPv4 address, is neither a loopback nor a tap device, and whose
// address passes the link-local test.
bool isUnderlayCandidate(const ifaddrs& entry);

}  // namespace tunadm
