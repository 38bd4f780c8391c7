// The profile store, used through its own functions at its real place.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "profiles/ConfigControl.h"
#include "profiles/CurrentProfile.h"
#include "profiles/FlatForms.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfilePaths.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs enumerated(std::string_view left_out = {}) {
  ProfileList list;
  EXPECT_TRUE(enumerateProfiles(&list, left_out));
  Pairs pairs;
  for (const ProfileEntry& entry : list) pairs.emplace_back(entry.dir_name, entry.profile_name);
  return pairs;
}

TEST(ProfileList, SortsBytewiseAndLeavesOutWhatIsNoProfile) {
  TestHost host;
  host.profile("1").named("b").profile("2").named("B").profile("3").named("\xc3\xa4");
  host.profile(".backup").named("hidden").file("plain", "x").file(".current", "1\n");
  ASSERT_EQ(symlink("/opt/vrx/profiles/1", "/opt/vrx/profiles/link"), 0);
  EXPECT_EQ(enumerated(), (Pairs{{"2", "B"}, {"1", "b"}, {"3", "\xc3\xa4"}}));
  EXPECT_EQ(enumerated("1"), (Pairs{{"2", "B"}, {"3", "\xc3\xa4"}}));
}

TEST(ProfileList, RepairsNamesOnDisk) {
  TestHost host;
  host.profile("a").named("office").profile("b").named("office");
  host.profile("c").named("profile").profile("d").profile("e").named("");
  const Pairs first = enumerated();
  std::map<std::string, std::string> names;  // which of two comes first is the file system's choice
  for (const auto& [dir_name, name] : first) names[name] = dir_name;
  EXPECT_EQ(names.size(), 5u);
  EXPECT_EQ(names["office"] + names["office#2"], names["office"] == "a" ? "ab" : "ba");
  EXPECT_EQ(names["profile"], "c");
  EXPECT_TRUE(names.contains("profile#2") && names.contains("profile#3"));
  for (const auto& [name, dir_name] : names)
    EXPECT_EQ(host.read(dir_name + "/profile_name"), name + "\n");
  EXPECT_EQ(enumerated(), first);
  EXPECT_FALSE(host.exists("/tmp/lock/profiles.lock"));
}

TEST(ProfileList, StoresThatCannotBeListed) {
  TestHost host;
  EXPECT_EQ(enumerated(), Pairs());
  ProfileList list;
  host.profile("a").named("fine").file("b/profile_name/in-its-place", "");
  EXPECT_FALSE(enumerateProfiles(&list)) << "a name that cannot be written";
  ASSERT_EQ(rename("/opt/vrx/profiles", "/opt/vrx/elsewhere"), 0);
  EXPECT_FALSE(enumerateProfiles(&list));
  EXPECT_TRUE(list.empty());
}

TEST(TakenNames, NumbersGoOnFromTheLastFreeOne) {
  TakenNames taken;
  EXPECT_EQ(taken.uniqueName("a"), "a");
  for (const char* name : {"a", "a#2", "a#4"}) taken.add(name);
  EXPECT_EQ(taken.uniqueName("a"), "a#3");
  EXPECT_EQ(taken.uniqueName("a"), "a#3");
  taken.add("a#3");
  EXPECT_EQ(taken.uniqueName("a"), "a#5");
  for (int i = 5; i <= 999999; ++i) taken.add("a#" + std::to_string(i));
  EXPECT_EQ(taken.uniqueName("a"), "a");
}

TEST(CurrentProfile, WhatTheMarkerMayName) {
  const struct {
    std::string marker;
    const char* dir_name;  // null: no current profile
    const char* profile_name;
  } cases[] = {
      {"one\nignored\n", "one", "first"},
      {"one", "one", "first"},
      {std::string("one\0x\n", 6), "one", "first"},
      {"nameless\n", "nameless", "nameless"},
      {"gone\n", "gone", "gone"},
      {".factory\n", ".factory", ".factory"},
      {"\none\n", nullptr, ""},
      {"", nullptr, ""},
      {".\n", nullptr, ""},
      {"..\n", nullptr, ""},
      {"../profiles/one\n", nullptr, ""},
      {"one/\n", nullptr, ""},
      {"link\n", nullptr, ""},
      {"dead\n", nullptr, ""},
      {"plain\n", nullptr, ""},
      {std::string(300, 'x'), nullptr, ""},
  };
  TestHost host;
  host.factory().profile("one").named("first").profile("nameless").file("plain", "x");
  ASSERT_EQ(symlink("one", "/opt/vrx/profiles/link"), 0);
  ASSERT_EQ(symlink("nowhere", "/opt/vrx/profiles/dead"), 0);
  EXPECT_FALSE(lookUpCurrentProfile().valid) << "no marker";
  for (const auto& c : cases) {
    host.file(".current", c.marker);
    const ProfileIdentity identity = lookUpCurrentProfile();
    EXPECT_EQ(identity.valid, c.dir_name != nullptr) << c.marker;
    EXPECT_EQ(identity.dir_name, c.dir_name != nullptr ? c.dir_name : "") << c.marker;
    EXPECT_EQ(identity.profile_name, c.profile_name) << c.marker;
    EXPECT_EQ(identity.profiles_root, c.dir_name != nullptr ? "/opt/vrx//profiles/" : "");
  }
}

TEST(CurrentProfile, EnteringHealsAStaleMarker) {
  TestHost host;
  std::string path = "old";
  EXPECT_FALSE(enterCurrentProfile(&path)) << "an empty store";
  EXPECT_EQ(path, "");
  host.profile("z").named("alpha").profile("a").named("beta").file("bare/profile_name", "aaa\n");
  for (const char* marker : {"gone\n", "bare\n", "../z\n"}) {
    host.file(".current", marker);
    ASSERT_TRUE(enterCurrentProfile(&path)) << marker;
  }
  // The first by friendly name, whether or not it is usable.
  EXPECT_EQ(path, "/opt/vrx//profiles/bare");
  EXPECT_EQ(host.read(".current"), "bare\n");
  EXPECT_EQ(host.mode(".current"), 0666u);
  for (const char* name : {"", "..", "a\nb"}) EXPECT_FALSE(setCurrentProfile(name)) << name;
  host.file(".current", "z\n");
  ASSERT_TRUE(enterCurrentProfile(&path));
  EXPECT_EQ(path, "/opt/vrx//profiles/z");
  char directory[100];
  EXPECT_STREQ(getcwd(directory, sizeof directory), "/opt/vrx/profiles/z");
}

TEST(FlatForms, FitOrFail) {
  TestHost host;
  host.profile("p").file(".current", "p\n");
  using Flat = bool (*)(char*, std::size_t);
  const std::pair<Flat, std::string> cases[] = {
      {[](char* b, std::size_t n) { return rootDirectory(b, n); }, "/opt/vrx/"},
      {[](char* b, std::size_t n) { return profileDirectory("x", b, n); }, "/opt/vrx//profiles/x"},
      {[](char* b, std::size_t n) { return factoryDirectory(b, n); },
       "/opt/vrx//profiles/.factory"},
      {[](char* b, std::size_t n) { return currentMarkerPath(b, n); },
       "/opt/vrx//profiles/.current"},
      {[](char* b, std::size_t n) { return currentProfileDirectory(b, n); },
       "/opt/vrx//profiles/p"},
      {[](char* b, std::size_t n) { return profileFile("x", "y", b, n); },
       "/opt/vrx//profiles/x/y"},
      {[](char* b, std::size_t n) { return currentProfileFile("y", b, n); },
       "/opt/vrx//profiles/p/y"},
      {[](char* b, std::size_t n) { return enterCurrentProfile(b, n); }, "/opt/vrx//profiles/p"},
      {[](char* b, std::size_t n) {
         TakenNames taken;
         taken.add("a");
         return uniqueName("a", &taken, b, n);
       },
       "a#2"}};
  for (const auto& [flat, expected] : cases) {
    char buffer[64];
    EXPECT_TRUE(flat(buffer, expected.size() + 1));
    EXPECT_EQ(buffer, expected);
    EXPECT_FALSE(flat(buffer, expected.size()));
    EXPECT_EQ(buffer, expected.substr(0, expected.size() - 1));
    EXPECT_FALSE(flat(buffer, 0));
  }
  char buffer[8] = "old";
  EXPECT_FALSE(profileFile("p", "", buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "");
}

TEST(ConfigControl, WritersKeepModeAndForeignLines) {
  TestHost host;
  host.file("p/endbox.conf", "# code\r\nlog_level=info\nactivation_code=old", 0604);
  EXPECT_TRUE(writeInvitationCode("p", " new \n").ok());
  EXPECT_TRUE(writeLogLevel("p", "debug").ok());
  EXPECT_TRUE(writeInvitationCode("p", "  ").ok());
  EXPECT_EQ(host.read("p/endbox.conf"),
            "# code\r\nlog_level=debug\nactivation_code=new\nopenhip.log_level=debug\n");
  EXPECT_EQ(host.mode("p/endbox.conf"), 0604u);
  EXPECT_TRUE(writeInvitationCode("p", "###").ok());
  EXPECT_EQ(host.read("p/endbox.conf"), "# code\r\nlog_level=debug\nopenhip.log_level=debug\n");
  EXPECT_FALSE(host.exists("p/endbox.conf.temp"));
  // A missing file is made.
  EXPECT_TRUE(writeMasterInterface("p", "eth0").ok());
  EXPECT_EQ(host.read("p/hip.conf"), "master_interface=eth0\n");
  EXPECT_EQ(host.mode("p/hip.conf"), 0644u);
}

TEST(ConfigControl, RefusalsLeaveTheFileAlone) {
  TestHost host;
  host.file("p/hip.conf", "a\n").file("p/endbox.conf/in-its-place", "");
  EXPECT_EQ(writeMasterInterface("p", "").code(), 0x10000003);
  EXPECT_EQ(writeMasterInterface("", "eth0").code(), 0x10000003);
  EXPECT_EQ(setHelmsmanAddress("", "h", 1).code(), 0x10000003);
  EXPECT_TRUE(writeLogLevel("", "info").ok());
  EXPECT_EQ(writeLogLevel("p", "info").code(), 0x14000006) << "what cannot be read stays";
  host.file("p/hip.conf.temp/in-its-place", "");
  EXPECT_EQ(writeMasterInterface("p", "eth0").code(), 0x14000005);
  EXPECT_EQ(host.read("p/hip.conf"), "a\n");
}

TEST(ConfigControl, HelmsmanForms) {
  const struct {
    const char* host;
    int port;
    const char* line;
  } cases[] = {{"h", 1, "map_uri=https://h:1\n"},   {"h", 65535, "map_uri=https://h:65535\n"},
               {"h", 65536, "map_uri=https://h\n"}, {"h", 0, "map_uri=https://h\n"},
               {"h", -1, "map_uri=https://h\n"},    {"", 8096, "map_uri=\n"}};
  TestHost store;
  store.file("p/mapconfig.static", "old\nlines\n", 0666);
  for (const auto& c : cases) {
    EXPECT_TRUE(setHelmsmanAddress("p", c.host, c.port).ok());
    EXPECT_EQ(store.read("p/mapconfig.static"), c.line);
    EXPECT_EQ(store.mode("p/mapconfig.static"), 0640u);
  }
}

TEST(ConfigControl, Readers) {
  TestHost host;
  host.file("p/device_id", "\nID-7\n").file("p/endbox.conf", "log_level = debug # loud\n");
  host.file(".current", "p\n");
  std::string value = "old";
  std::string port = "old";
  EXPECT_TRUE(readDeviceId("p", &value));
  EXPECT_EQ(value, "ID-7");
  EXPECT_TRUE(readLogLevel("p", &value));
  EXPECT_EQ(value, "debug");
  for (const char* dir_name : {"", ".current", "gone"}) {
    value = port = "old";
    EXPECT_FALSE(readDeviceId(dir_name, &value) || readHelmsmanAddress(dir_name, &value, &port) ||
                 readLogLevel(dir_name, &value) || readMasterInterface(dir_name, &value));
    EXPECT_EQ(value + port, "");
  }
}

}  // namespace
}  // namespace tunadm
