#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <unistd.h>

#include <bit>
#include <string>
#include <string_view>
#include <vector>

#include "profiles/ConfigControl.h"
#include "profiles/ConfigText.h"
#include "profiles/TakenNames.h"
#include "service/InitSystems.h"

namespace tunadm {
namespace {

TEST(ConfigText, ALineThatFillsTheBufferGoesOnAsALineOfItsOwn) {
  const std::string full(7999, 'x');
  EXPECT_EQ(withSettings(full + "k=1\n", std::vector<Setting>{{"k=", "v"}}), full + "k=v\n");
}

TEST(TakenNames, NumbersEndAtSixDigits) {
  TakenNames taken;
  taken.add("a");
  for (int number = 2; number < 999999; ++number) taken.add("a#" + std::to_string(number));
  EXPECT_EQ(taken.uniqueName("a"), "a#999999");
  taken.add("a#999999");
  EXPECT_EQ(taken.uniqueName("a"), "a");
}

TEST(NetworkInterfaces, Candidates) {
  const auto taken = [](std::string name, int family, const char* host, unsigned flags) {
    sockaddr_in address{};
    address.sin_family = static_cast<sa_family_t>(family);
    EXPECT_EQ(inet_pton(AF_INET, host, &address.sin_addr), 1);
    ifaddrs entry{};
    entry.ifa_name = name.data();
    entry.ifa_flags = flags;
    EXPECT_FALSE(isUnderlayCandidate(entry)) << "no address";
    entry.ifa_addr = reinterpret_cast<sockaddr*>(&address);
    return isUnderlayCandidate(entry);
  };
  EXPECT_TRUE(taken("eth0", AF_INET, "10.0.0.1", 0));
  constexpr bool kLowByteFirst = std::endian::native == std::endian::little;
  EXPECT_EQ(taken("Tap0", AF_INET, "169.254.10.20", IFF_UP), kLowByteFirst);
  EXPECT_FALSE(taken("tapeth0", AF_INET, "10.0.0.1", IFF_UP));
  EXPECT_FALSE(taken("lo", AF_INET, "127.0.0.1", IFF_UP | IFF_LOOPBACK));
  EXPECT_FALSE(taken("eth0", AF_INET6, "0.0.0.0", IFF_UP));
  EXPECT_EQ(taken("eth0", AF_INET, "10.20.254.169", IFF_UP), !kLowByteFirst);
}

std::vector<std::string> candidatesOfThisHost() {
  std::vector<std::string> names;
  ifaddrs* table = nullptr;
  EXPECT_EQ(getifaddrs(&table), 0);
  for (const ifaddrs* entry = table; entry != nullptr; entry = entry->ifa_next)
    if (isUnderlayCandidate(*entry)) names.emplace_back(entry->ifa_name);
  freeifaddrs(table);
  return names;
}

TEST(NetworkInterfaces, AllCandidatesAreFound) {
  std::vector<std::string> names, before;
  do {  // until none came or went meanwhile
    before = candidatesOfThisHost();
    names.assign(1, "left over");
    EXPECT_TRUE(read_networks(&names));
  } while (before != candidatesOfThisHost());
  EXPECT_EQ(names, before);
}

TEST(ChildProcess, OutcomesAsNumbers) {
  const pid_t child = forkChild([] { _exit(7); });
  EXPECT_EQ(waitForChild(child), 1007);
  EXPECT_EQ(waitForChild(child), 3001);
  EXPECT_EQ(waitForChild(0), 3002);
  EXPECT_EQ(outcomeOf(9), 2009);
}

TEST(InitSystems, AreSelectedByName) {
  std::string names;
  std::vector<std::string_view> selected = systemNames();
  selected.insert(selected.end(), {"", "unknown"});
  for (const std::string_view name : selected) {
    selectSystem(name);
    names.append(currentSystem().name()).append(" ");
  }
  EXPECT_EQ(names, "systemd initd upstart null null null systemd ");
}

}  // namespace
}  // namespace tunadm
