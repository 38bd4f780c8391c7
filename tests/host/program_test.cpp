// The program as its users run it: command lines and what they print.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using Words = std::vector<std::string>;

const char kOfficeDetails[] =
    "details:\n"
    "profile_name=office\n"
    "helmsman=10.0.0.1:8096\n"
    "profile_dir=profile-123123\n"
    "network=eth0\n"
    "deviceID=device-1\n"
    "overlay_device_ip=1.2.3.4\n"
    "overlay_mask=255.0.0.0\n"
    "invitation=abc\n"
    "log_level=info\n";

const Words kCreateOffice = {"profile",      "create",        "office", "helmsman=10.0.0.1:8096",
                             "network=eth0", "invitation=abc"};

std::string failure(const std::string& text, const std::string& code) {
  return "status_text: " + text + "\nstatus_code: " + code + "\n";
}

TEST(Program, WithoutACommand) {
  TestHost host;
  const struct {
    Words words;
    int exit;
    const char* out;
  } cases[] = {
      {{},
       0,
       "Usage: /usr/sbin/tunadm json <command request object>\n"
       "   or: /usr/sbin/tunadm <two-word command name> <command-specific params>\n"
       "   or: /usr/sbin/tunadm help   (for a command list and short summaries)\n"},
      {{""}, 1, "invalid command name\n"},
      {{"profile", "create"}, 1, "invalid command name\n"},
      {{"list", "profiles", "all"}, 1, "invalid command arguments\n"},
      {{"list", "profiles", "--JSON"}, 1, "invalid command arguments\n"},
      {{"profile", "create", "x"}, 1, "invalid command arguments\n"},
      {{"profile", "create", "x", "helmsman="}, 1, "invalid command arguments\n"},
      {{"profile", "create", "x", "helmsman=h", "allow_rename=maybe"},
       1,
       "invalid command arguments\n"},
      {{"list", "log", "x", "max_lines=1x"}, 1, "invalid command arguments\n"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = host.run(c.words);
    EXPECT_EQ(outcome.exit, c.exit);
    EXPECT_EQ(outcome.out, c.out);
    EXPECT_EQ(outcome.err, "");
  }
}

TEST(Program, CreatesAndShowsAProfile) {
  TestHost host;
  host.factory();
  const Outcome created = host.run(kCreateOffice);
  EXPECT_EQ(created.out, std::string(kOfficeDetails) + "profile_name: office\n");
  EXPECT_EQ(created.err, "");
  EXPECT_EQ(created.exit, 0);

  const std::string profile = "profile-123123/";
  EXPECT_EQ(host.mode(profile), 0755u);
  const struct {
    const char* file;
    mode_t mode;
    const char* content;
  } files[] = {
      {"profile_name", 0640, "office\n"},
      {"hip.conf", 0644, "master_interface=eth0\n"},
      {"endbox.conf", 0644,
       "device_ip=1.2.3.4\ndevice_mask=255.0.0.0\nlog_level=info\nactivation_code=abc\n"},
      {"mapconfig.static", 0640, "map_uri=https://10.0.0.1:8096\n"},
      {"device_id", 0644, "device-1\n"},
      {"firmware_revision", 0644, "3.1.0\n"},
      {"ca-certs/root.pem", 0644, "certificate\n"},
  };
  for (const auto& f : files) {
    EXPECT_EQ(host.read(profile + f.file), f.content) << f.file;
    EXPECT_EQ(host.mode(profile + f.file), f.mode) << f.file;
  }
  EXPECT_FALSE(host.exists("/tmp/lock/profiles.lock"));

  for (const char* selector : {"office", "dir=profile-123123"}) {
    EXPECT_EQ(host.run({"profile", "details", selector}).out, kOfficeDetails);
    EXPECT_EQ(host.run({"profile", selector, "details", "--quiet"}).out, kOfficeDetails);
  }
  EXPECT_EQ(host.says("list profiles --verbose"),
            "method: list profiles\nstatus_text: success\nstatus_code: 0x00000001\n"
            "profile-123123: office\n"
            "current_dir: \ncurrent_name: \nroot_dir: /opt/vrx//profiles/\n");
  host.file(".current", "profile-123123\n");
  EXPECT_EQ(host.says("show profiles"),
            "profile-123123: office\ncurrent_dir: profile-123123\ncurrent_name: office\n"
            "root_dir: /opt/vrx//profiles/\n");
  EXPECT_EQ(host.says("profile details --active --verbose"),
            "method: profile details\nstatus_text: success\nstatus_code: 0x00000001\n" +
                std::string(kOfficeDetails));
}

TEST(Program, InterfacesAreThoseOfTheHost) {
  TestHost host;
  const Outcome listed = host.run({"show", "interfaces", "--verbose"});
  EXPECT_EQ(listed.out.rfind("method: list interfaces\nstatus_text: success\n", 0), 0u);
  EXPECT_EQ(listed.out.find("\nlo\n"), std::string::npos);
}

TEST(Program, FactoryDetailsLeaveOutTheEmptyHelmsman) {
  TestHost host;
  host.factory();
  EXPECT_EQ(host.says("profile details .factory"),
            "details:\nprofile_name=.factory\nprofile_dir=.factory\nnetwork=auto\n"
            "deviceID=device-1\noverlay_device_ip=1.2.3.4\noverlay_mask=255.0.0.0\ninvitation=\n"
            "log_level=info\n");
}

TEST(Program, NoSuchProfile) {
  TestHost host;
  host.profile("a").named("office").file("plain", "x");
  ASSERT_EQ(symlink("a", "/opt/vrx/profiles/link"), 0);
  for (const char* selector : {"Office", ".current", "--active", "", "dir=", "dir=b", "dir=..",
                               "dir=a/", "dir=plain", "dir=link"}) {
    const Outcome outcome = host.run({"profile", "details", selector});
    EXPECT_EQ(outcome.out, failure("profile not found", "0x12001001")) << selector;
    EXPECT_EQ(outcome.exit, 0);
  }
  EXPECT_EQ(host.says("profile details b --quiet"), "status_code: 0x12001001\n");
  ASSERT_EQ(rename("/opt/vrx/profiles", "/opt/vrx/elsewhere"), 0);
  for (const Words& words : {Words{"list", "profiles"}, {"profile", "details", "a"}}) {
    EXPECT_EQ(host.run(words).out, failure("application error", "0x12000001"));
  }
}

TEST(Create, ChoosesAFreeNameAndDirectory) {
  TestHost host;
  host.factory().profile("profile-123124").named("office").file("profile-123123", "in the way");
  ASSERT_EQ(symlink("nowhere", "/opt/vrx/profiles/profile-123125"), 0);
  const struct {
    Words words;
    const char* name_line;  // what the output ends with
  } cases[] = {
      {{"profile", "create", "office", "helmsman=h"}, "profile_name: office#2\n"},
      {{"profile", "create", "profile", "helmsman=h"}, "profile_name: profile\n"},
      {{"profile", "create", "", "helmsman=h", "new_name=lab"}, "profile_name: lab\n"},
      {{"profile", "create", "", "helmsman=h"}, "profile_name: profile#2\n"},
      {{"profile", "create", "office", "helmsman=h", "allow_rename=no"}, "0x12000001\n"},
  };
  for (const auto& c : cases) {
    const std::string out = host.run(c.words).out;
    const std::string end = c.name_line;
    ASSERT_GE(out.size(), end.size());
    EXPECT_EQ(out.substr(out.size() - end.size()), end);
  }
  EXPECT_EQ(host.read("profile-123126/profile_name"), "office#2\n");
  // The directory of the refused one stays, and the next listing names it.
  EXPECT_TRUE(host.exists("profile-123130"));
  EXPECT_NE(host.says("list profiles").find("profile-123130: profile#3\n"), std::string::npos);
}

TEST(Create, SettingsByWhatIsGiven) {
  TestHost host;
  host.factory().file(".factory/endbox.conf", "activation_code=factory\nx\n");
  EXPECT_EQ(host.run({"profile", "create", "a", "helmsman=h:0", "invitation=###", "activate",
                      "log_level=debug"})
                .exit,
            0);
  EXPECT_EQ(host.read("profile-123123/hip.conf"), "master_interface=auto\n");
  EXPECT_EQ(host.read("profile-123123/endbox.conf"), "x\n");
  EXPECT_EQ(host.read("profile-123123/mapconfig.static"), "map_uri=https://h\n");
  EXPECT_EQ(host.read(".current"), "profile-123123\n");
  EXPECT_EQ(host.mode(".current"), 0666u);
  EXPECT_EQ(host.run({"profile", "create", "b", "helmsman=:1", "network="}).exit, 0);
  EXPECT_EQ(host.read("profile-123124/mapconfig.static"), "map_uri=\n");
  EXPECT_EQ(host.read("profile-123124/endbox.conf"), "activation_code=factory\nx\n");
}

TEST(Create, CopiesLinksToFilesByContentAndNoDirectories) {
  TestHost host;
  host.factory().file(".factory/peer_certs/x", "y").file("/tmp/target", "linked\n", 0600);
  const std::string factory = "/opt/vrx/profiles/.factory/";
  ASSERT_EQ(symlink("/tmp/target", (factory + "absolute").c_str()), 0);
  // A relative target is looked up from where the command was started.
  ASSERT_EQ(symlink("hip.conf", (factory + "relative").c_str()), 0);
  ASSERT_EQ(symlink("/tmp", (factory + "directory").c_str()), 0);
  ASSERT_EQ(host.run(kCreateOffice).exit, 0);
  EXPECT_EQ(host.read("profile-123123/absolute"), "linked\n");
  EXPECT_EQ(host.mode("profile-123123/absolute"), 0644u);
  struct stat entry;
  EXPECT_EQ(lstat("/opt/vrx/profiles/profile-123123/absolute", &entry), 0);
  EXPECT_TRUE(S_ISREG(entry.st_mode));
  for (const char* name : {"relative", "directory", "peer_certs"}) {
    EXPECT_FALSE(host.exists(std::string("profile-123123/") + name)) << name;
  }
}

TEST(Create, StopsAtTheFirstFileThatCannotBeCopied) {
  TestHost host;
  host.file(".factory/hip.conf", "").file("/only_here", "");
  ASSERT_EQ(symlink("only_here", "/opt/vrx/profiles/.factory/only_here"), 0);
  EXPECT_EQ(host.run(kCreateOffice).out,
            failure("invalid argument (/opt/vrx//profiles/.factory/only_here)", "0x10000003"));
  EXPECT_TRUE(host.exists("profile-123123/hip.conf"));
  EXPECT_FALSE(host.exists("profile-123123/mapconfig.static"));
  ASSERT_EQ(unlink("/opt/vrx/profiles/.factory/only_here") + unlink("/only_here"), 0);
  EXPECT_EQ(host.run(kCreateOffice).out.rfind("details:", 0), 0u) << "no certificates: no matter";
}

TEST(Create, Refusals) {
  TestHost host;
  EXPECT_EQ(host.run(kCreateOffice).out, failure("stdlib error: opendir", "0x14000002"));
  host.factory();
  const std::string before = host.runProgram({"/bin/ls", "-R", "/opt"}).out;
  const std::string line_break =
      failure("invalid argument (value holds a line break)", "0x10000003");
  for (const Words& words : {Words{"profile", "create", "a\nb", "helmsman=h"},
                             {"profile", "create", "a", "helmsman=h\nmap_uri=evil"},
                             {"profile", "create", "a", "helmsman=h", "network=eth0\n"},
                             {"profile", "create", "a", "helmsman=h", "invitation=a\nb"}}) {
    EXPECT_EQ(host.run(words).out, line_break);
  }
  const std::string refused =
      failure("authentication error (tunadm requires sudo for this command)", "0x12000002");
  const Outcome ordinary = host.run(kCreateOffice, RunAs::kOrdinaryUser);
  EXPECT_EQ(ordinary.out, refused);
  EXPECT_EQ(ordinary.exit, 0);
  EXPECT_EQ(host.run({"profile", "create", "a\nb", "helmsman=h"}, RunAs::kOrdinaryUser).out,
            refused);
  EXPECT_EQ(host.runProgram({"/bin/ls", "-R", "/opt"}).out, before);
}

TEST(Diagnostics, LogVersionsAndBundle) {
  TestHost host;
  host.factory().profile("a").named("office").file("a/hip.log", "E~ one\nI~ two\nE~ three\n");
  const struct {
    Words words;
    std::string out;
  } cases[] = {
      {{"list", "log", "office"}, "E~ one\nI~ two\nE~ three\nprofile_name: office\n"},
      {{"show", "log", "dir=a", "max_lines=1"}, "E~ three\nprofile_name: office\n"},
      {{"list", "log", "office", "log_level=err"}, "E~ one\nE~ three\nprofile_name: office\n"},
      {{"list", "log", "office", "max_lines=0"}, "profile_name: office\n"},
      {{"list", "log", "office", "max_lines=-1", "log_level=fatal"}, "profile_name: office\n"},
      {{"list", "log", ".factory", "--verbose"},
       "method: list log\nstatus_text: success with warnings\nstatus_code: 0x00000002\n"
       "no logfile available for this profile\nprofile_name: .factory\n"},
      {{"list", "log", "home"}, failure("profile not found", "0x12001001")},
      {{"list", "versions"}, "hipapp_version: 3.1.0\ntunadm_version: 2.2\n"},
      {{"support", "bundle"}, failure("stdlib error: system", "0x14000013")},
      {{"json", "{}"}, "subcommand:\n"},
      {{"json", "{}", "extra"}, "invalid command arguments\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(host.run(c.words).out, c.out);
  std::string log;
  for (int i = 1; i <= 80; ++i) log += "line " + std::to_string(i) + "\n";
  host.file("a/hip.log", log);
  const std::string last_fifty = log.substr(log.find("line 31\n")) + "profile_name: office\n";
  EXPECT_EQ(host.says("list log office"), last_fifty);
  EXPECT_EQ(host.says("list log office max_lines=-1"), last_fifty);
  EXPECT_EQ(host.says("list log office max_lines=200000"), log + "profile_name: office\n");
  host.file("/opt/vrx/bin/vrx-sendbundle.sh", "#!/bin/sh\nexit 3\n", 0755);
  EXPECT_EQ(host.says("support bundle"), failure("application error", "0x12000001"));
  host.file("/opt/vrx/bin/vrx-sendbundle.sh", "#!/bin/sh\necho bundled\n", 0755);
  EXPECT_EQ(host.says("support bundle"), "bundled\n");
  ASSERT_EQ(unlink("/opt/vrx/profiles/.factory/firmware_revision"), 0);
  EXPECT_EQ(host.says("list versions"), "hipapp_version: \ntunadm_version: 2.2\n");
  host.file(".factory/firmware_revision", std::string(1100000, 'x'));
  EXPECT_EQ(host.says("list versions"), "hipapp_version: 2.2\ntunadm_version: 2.2\n");
}

TEST(Lock, IsNotTakenFromADirectoryThatSomebodyElseOwns) {
  TestHost host;
  host.factory();
  ASSERT_EQ(symlink("/opt", "/tmp/lock"), 0);
  if (lchown("/tmp/lock", 1000, 1000) != 0) GTEST_SKIP() << "only root can give files away";
  const Outcome outcome = host.run(kCreateOffice);
  EXPECT_EQ(outcome.err,
            "W~ tunadm ProfileLock.cpp ProfileLock: going on without the profile lock\n");
  EXPECT_EQ(outcome.out.rfind("details:\nprofile_name=office\n", 0), 0u);
  EXPECT_FALSE(host.exists("/opt/profiles.lock"));
}

}  // namespace
}  // namespace tunadm
