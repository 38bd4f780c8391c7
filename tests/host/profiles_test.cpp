// The profile store, used through its own functions at its real place.

#include <functional>

#include "profiles/CurrentProfile.h"
#include "profiles/FlatForms.h"
#include "profiles/ProfileControl.h"
#include "profiles/ProfileList.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using namespace std::literals;

TEST(ProfileList, SortsBytewiseAndRepairsNamesOnDisk) {
  TestHost host;
  host.profile("1", "b").profile("2", "B").profile("3", "\xc3\xa4").profile(".backup", "hidden");
  host.file("plain", "x").file(".current", "1\n").link("/opt/vrx/profiles/1", "link");
  host.profile("a", "office").profile("b", "office").profile("c", "profile").profile("d");
  host.file("e/profile_name", "\n").profile("f", "profile#3");
  ProfileList list;
  EXPECT_TRUE(listStore(&list).ok());
  std::string names;
  for (const auto& [dir_name, name] : list) {
    names += name + " ";
    EXPECT_EQ(host.read(dir_name + "/profile_name"), name + "\n") << dir_name;
  }
  EXPECT_EQ(names, "B b office office#2 profile profile#2 profile#3 profile#4 \xc3\xa4 ");
  EXPECT_EQ(host.read("c/profile_name") + host.read("f/profile_name"), "profile\nprofile#3\n");
  EXPECT_EQ(host.read(".backup/profile_name"), "hidden\n");
}

TEST(CurrentProfile, WhatTheMarkerMayName) {
  TestHost host;
  host.factory().profile("one", "first").profile("nameless").file("plain", "x");
  host.link("one", "link").link("nowhere", "dead");
  EXPECT_FALSE(lookUpCurrentProfile().valid) << "no marker";
  EXPECT_EQ(isCurrentProfile({"one", "first"}, lookUpCurrentProfile()), TriState::kUnknown);
  for (const auto& [marker, expected] : {std::pair{"one\nignored\n"s, "one: first"},
                                         {"one\0x\n"s, "one: first"},
                                         {"nameless\n"s, "nameless: nameless"},
                                         {"gone\n"s, "gone: gone"},
                                         {".factory\n"s, ".factory: .factory"}}) {
    host.file(".current", marker);
    const ProfileIdentity identity = lookUpCurrentProfile();
    EXPECT_EQ(identity.dir_name + ": " + identity.profile_name, expected);
  }
  const std::string endless(300, 'x');
  host.file(".backup/hip.conf", "").file("a\tb/hip.conf", "");
  for (const char* marker : {"\none\n", "", ".\n", "..\n", "../profiles/one\n", "link\n", "dead\n",
                             "plain\n", ".backup\n", "a\tb\n", "one\x7f\n", endless.c_str()}) {
    host.file(".current", marker);
    EXPECT_FALSE(lookUpCurrentProfile().valid) << marker;
  }
}

TEST(CurrentProfile, EnteringHealsAStaleMarker) {
  TestHost host;
  std::string path = "old";
  EXPECT_FALSE(enterCurrentProfile(&path)) << "an empty store";
  EXPECT_EQ(path, "");
  host.profile("z", "alpha").profile("a", "beta").file("bare/profile_name", "aaa\n");
  for (const char* marker : {"gone\n", "bare\n", "../z\n"}) {
    host.file(".current", marker);
    ASSERT_TRUE(enterCurrentProfile(&path)) << marker;
    // The first by friendly name, whether or not it is usable.
    EXPECT_EQ(path, "/opt/vrx//profiles/bare");
  }
  EXPECT_EQ(host.read(".current"), "bare\n");
  EXPECT_EQ(host.mode(".current"), 0666u);
  for (const char* name : {"", "..", "a\nb"}) EXPECT_FALSE(setCurrentProfile(name)) << name;
  host.file(".current", "z\n");
  ASSERT_TRUE(enterCurrentProfile(&path));
  char directory[100];
  EXPECT_STREQ(getcwd(directory, sizeof(directory)), "/opt/vrx/profiles/z");
}

// A line of more than a mebibyte stands for a file that cannot be read.
TEST(ProfileList, WhatCannotBeReadIsNotReplaced) {
  const std::string unreadable(3 << 19, 'x');
  TestHost host;
  host.profile("a", "office").file("b/profile_name", unreadable).profile("c");
  ProfileList list;
  EXPECT_EQ(listStore(&list).code(), kApplicationError);
  ProfileListing listing = {.profiles = {}, .current_dir = "old", .current_name = "old"};
  EXPECT_EQ(listProfiles(&listing).code(), kApplicationError);
  EXPECT_EQ(listing.current_dir + listing.current_name, "");
  EXPECT_EQ(host.read("b/profile_name"), unreadable);
  EXPECT_FALSE(host.exists("c/profile_name"));
  host.remove("b").file(".current", unreadable);
  std::string path;
  EXPECT_FALSE(enterCurrentProfile(&path)) << "which profile is current is not known";
  EXPECT_EQ(host.read(".current"), unreadable);
  host.remove(".current");
  EXPECT_TRUE(enterCurrentProfile(&path));
}

// With each size of a buffer; the byte after it must stay untouched.
TEST(FlatForms, FillTheirBufferAndNoMore) {
  TestHost host;
  host.profile("one", "one").file("one/hip.conf", "").file(".current", "one\n");
  TakenNames taken;
  taken.add("a");
  using Form = std::function<bool(char*, std::size_t)>;
  const std::string root = "/opt/vrx//profiles/";
  const std::pair<Form, std::string> cases[] = {
      {[](auto... to) { return rootDirectory(to...); }, "/opt/vrx/"},
      {[](auto... to) { return profileDirectory("x", to...); }, root + "x"},
      {[](auto... to) { return profileDirectory("", to...); }, ""},
      {[](auto... to) { return factoryDirectory(to...); }, root + ".factory"},
      {[](auto... to) { return currentMarkerPath(to...); }, root + ".current"},
      {[](auto... to) { return currentProfileDirectory(to...); }, root + "one"},
      {[](auto... to) { return profileFile("x", "y", to...); }, root + "x/y"},
      {[](auto... to) { return profileFile("x", "", to...); }, ""},
      {[](auto... to) { return currentProfileFile("y", to...); }, root + "one/y"},
      {[](auto... to) { return enterCurrentProfile(to...); }, root + "one"},
      {[&](auto... to) { return uniqueName("a", &taken, to...); }, "a#2"}};
  for (const auto& [form, text] : cases) {
    for (std::size_t size = 0; size < text.size() + 2; ++size) {
      std::string buffer(size + 1, '!');
      EXPECT_EQ(form(buffer.data(), size), size > text.size() && !text.empty()) << text << size;
      EXPECT_EQ(buffer, size == 0 ? "!" : text.substr(0, size - 1) + "\0!"s) << size;
    }
  }
}

}  // namespace
}  // namespace tunadm
