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

TEST(CurrentProfile, OddMarkersAreNotBelieved) {
  TestHost host;
  host.profile("one", "first").profile(".backup").profile("a\tb").link("nowhere", "dead");
  const ProfileIdentity none = lookUpCurrentProfile();
  EXPECT_FALSE(none.valid);
  EXPECT_EQ(isCurrentProfile({"one", "first"}, none), TriState::kUnknown);
  host.file(".current", "one\0x\n"s);
  EXPECT_EQ(lookUpCurrentProfile().profile_name, "first");
  for (const std::string& marker : {"\none\n"s, ""s, ".\n"s, "..\n"s, ".backup\n"s, "dead\n"s,
                                    "a\tb\n"s, "one\x7f\n"s, std::string(300, 'x')}) {
    host.file(".current", marker);
    EXPECT_FALSE(lookUpCurrentProfile().valid) << marker;
  }
}

TEST(CurrentProfile, IsEnteredOrChosen) {
  TestHost host;
  std::string path = "old";
  EXPECT_FALSE(enterCurrentProfile(&path)) << "an empty store";
  EXPECT_EQ(path, "");
  for (const char* name : {"", "..", "a\nb"}) EXPECT_FALSE(setCurrentProfile(name)) << name;
  host.profile("z", "alpha");
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
