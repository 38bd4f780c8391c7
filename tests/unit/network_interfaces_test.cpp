#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <string>

#include "profiles/NetworkInterfaces.h"

namespace tunadm {
namespace {

TEST(NetworkInterfaces, Candidates) {
  const struct {
    const char* name;
    int family;
    const char* address;
    unsigned flags;
    bool taken;
  } cases[] = {{"eth0", AF_INET, "10.0.0.1", IFF_UP, true},
               {"eth0", AF_INET, "10.0.0.1", 0, true},
               {"lo", AF_INET, "127.0.0.1", IFF_UP | IFF_LOOPBACK, false},
               {"tapeth0", AF_INET, "10.0.0.1", IFF_UP, false},
               {"Tap0", AF_INET, "10.0.0.1", IFF_UP, true},
               {"eth0", AF_INET6, "0.0.0.0", IFF_UP, false},
               {"eth0", AF_INET, "169.254.10.20", IFF_UP, true},
               {"eth0", AF_INET, "10.20.254.169", IFF_UP, false},
               {"eth0", AF_INET, "10.20.169.254", IFF_UP, true}};
  for (const auto& c : cases) {
    sockaddr_in address{};
    address.sin_family = static_cast<sa_family_t>(c.family);
    ASSERT_EQ(inet_pton(AF_INET, c.address, &address.sin_addr), 1);
    std::string name = c.name;
    ifaddrs entry{};
    entry.ifa_name = name.data();
    entry.ifa_flags = c.flags;
    EXPECT_FALSE(isUnderlayCandidate(entry)) << "no address";
    entry.ifa_addr = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(isUnderlayCandidate(entry), c.taken) << c.name << " " << c.address;
  }
}

}  // namespace
}  // namespace tunadm
