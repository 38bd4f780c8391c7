// The service and the changes of a profile that go with it, with stand-ins for the init systems.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "profiles/ProfileLock.h"
#include "service/ChildProcess.h"
#include "service/ServiceControl.h"
#include "service/ServiceStatus.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using Words = std::vector<std::string>;
using Calls = std::vector<std::string>;

const char kStop[] = "/bin/systemctl systemctl stop quenlay";
const char kStart[] = "/bin/systemctl systemctl start quenlay";

std::string failure(const std::string& text, const std::string& code) {
  return "status_text: " + text + "\nstatus_code: " + code + "\n";
}

const std::string kRefusedRunning =
    failure("command cannot be executed while the profile is running", "0x12001002");
const std::string kNonzero = failure("child process returned nonzero exit code", "0x16001001");
const std::string kRefusedUser =
    failure("authentication error (tunadm requires sudo for this command)", "0x12000002");
const std::string kApplication = failure("application error", "0x12000001");

enum class Daemon { kDown, kUp, kUnknown };

// A host run by systemd with the profiles "one" (current) and "two".
struct ServiceHost : TestHost {
  explicit ServiceHost(Daemon daemon = Daemon::kDown) {
    factory().profile("one").named("one").profile("two").named("two");
    file(".current", "one\n", 0666).file("/opt/vrx/.systemctl", "").standIn("/bin/systemctl");
    if (daemon == Daemon::kUp) status("one", 0);
    if (daemon == Daemon::kUnknown) file("one/hipvars.txt", "uptime.now=1\n");
  }

  // The daemon's status file, last written so many seconds ago.
  void status(const std::string& dir_name, long age, const std::string& more = "") {
    const long now = time(nullptr) - age;
    file(dir_name + "/hipvars.txt", "uptime.now=" + std::to_string(now) + "\nuptime.started=" +
                                        std::to_string(now - 5) + "\n" + more);
  }
};

TEST(ChildProcess, OutcomesAndTheirStatuses) {
  const struct {
    int wait_status;
    int outcome;
    StatusCode code;
  } cases[] = {{W_EXITCODE(0, 0), 1000, 0x00000001},   {W_EXITCODE(1, 0), 1001, 0x16001001},
               {W_EXITCODE(255, 0), 1255, 0x16001001}, {W_EXITCODE(0, 9), 2009, 0x16001002},
               {W_STOPCODE(19), 2019, 0x16001002},     {0xffff, 3001, 0x1400000b}};
  for (const auto& c : cases) {
    EXPECT_EQ(childOutcome(c.wait_status), c.outcome);
    EXPECT_EQ(outcomeStatus(c.outcome).code(), c.code);
  }
  EXPECT_EQ(waitForChild(0), 3002);
  EXPECT_EQ(waitForChild(getpid()), 3001);
  EXPECT_EQ(outcomeStatus(3002).code(), 0x1400000b);
}

TEST(Service, EachInitSystemIsCalledInItsOwnWay) {
  const struct {
    const char* system;
    const char* path;
    Calls calls;  // of start, stop, restart
  } cases[] = {
      {"sys=systemd",
       "/bin/systemctl",
       {kStart, kStop, "/bin/systemctl systemctl restart quenlay"}},
      {"sys=bogus", "/bin/systemctl", {kStart, kStop, "/bin/systemctl systemctl restart quenlay"}},
      {"sys=upstart",
       "/sbin/initctl",
       {"/sbin/initctl initctl start hip", "/sbin/initctl initctl stop hip",
        "/sbin/initctl initctl restart hip"}},
      {"sys=initd",
       "/etc/init.d/quenlay",
       {"/etc/init.d/quenlay quenlay start", "/usr/bin/killall killall /usr/sbin/quenlay",
        "/etc/init.d/quenlay quenlay restart"}},
      {"sys=", "/etc/init.d/quenlay", {"/etc/init.d/quenlay quenlay start"}},
      {"sys=null", "/bin/systemctl", {}},
      {"sys=launchd", "/bin/systemctl", {}},
  };
  for (const auto& c : cases) {
    TestHost host;
    host.standIn(c.path).standIn("/usr/bin/killall");
    const Words verbs = {"start", "stop", "bounce"};
    for (std::size_t i = 0; i < std::max<std::size_t>(1, c.calls.size()); ++i) {
      EXPECT_EQ(host.run({"service", verbs[i], c.system}).out, c.calls.empty() ? kNonzero : "");
    }
    EXPECT_EQ(host.calls(), c.calls);
  }
}

TEST(Service, ProfileCommandsUseTheSameInitSystem) {
  for (const Words& words : {Words{"profile", "activate", "two"},
                             {"profile", "create", "new", "helmsman=h", "activate"},
                             {"profile", "modify", "one", "activate"}}) {
    for (const bool upstart : {true, false}) {
      ServiceHost host(Daemon::kUp);
      host.standIn("/etc/init.d/quenlay").standIn("/sbin/initctl");
      Words line = words;
      if (upstart) line.push_back("sys=upstart");
      EXPECT_EQ(host.run(line).out.find("status_code"), std::string::npos);
      EXPECT_EQ(host.calls(), upstart ? (Calls{"/sbin/initctl initctl stop hip",
                                               "/sbin/initctl initctl start hip"})
                                      : (Calls{kStop, kStart}));
    }
  }
}

TEST(Service, OrdinaryUsersAreRefused) {
  ServiceHost host;
  for (const Words& words : {Words{"service", "start"},
                             {"service", "stop"},
                             {"service", "restart"},
                             {"profile", "create", "x", "helmsman=h"},
                             {"profile", "delete", "two"},
                             {"profile", "rename", "two", "new_name=x"},
                             {"profile", "modify", "two", "network=x"},
                             {"support", "reset", "two"}}) {
    EXPECT_EQ(host.run(words, RunAs::kOrdinaryUser).out, kRefusedUser) << words[1];
  }
  EXPECT_EQ(host.calls(), Calls());
  // What activate needs is up to the marker's mode and the init system.
  host.file("/tmp/calls", "", 0666);
  EXPECT_EQ(host.says("profile activate dir=two", RunAs::kOrdinaryUser), "profile_name: two\n");
  EXPECT_EQ(host.calls(), (Calls{kStop, kStart}));
}

TEST(Service, WhatTheChildsEndMeans) {
  const std::string signalled = failure("child process terminated by a signal", "0x16001002");
  TestHost host;
  EXPECT_EQ(host.says("service start"), kNonzero) << "no init system";
  EXPECT_EQ(host.says("service start sys=systemd"), kNonzero) << "no such program";
  host.standIn("/bin/systemctl").file("/tmp/stand-in-end", "exit 7\nsignal 15\n");
  EXPECT_EQ(host.says("service start sys=systemd"), kNonzero);
  EXPECT_EQ(host.says("service restart full sys=systemd"), signalled);
  EXPECT_EQ(host.calls().size(), 2u);
}

TEST(Service, TheChildsOutputComesFirst) {
  ServiceHost host;
  host.file("/tmp/stand-in-output", "from the child\n");
  EXPECT_EQ(host.says("service start --verbose"),
            "from the child\nmethod: service start\nstatus_text: success\n"
            "status_code: 0x00000001\n");
}

TEST(ServiceStatus, Branches) {
  const long now = time(nullptr);
  const auto times = [now](long age, long uptime) {
    return "uptime.now=" + std::to_string(now - age) +
           "\nuptime.started=" + std::to_string(now - age - uptime) + "\n";
  };
  const std::string fresh = times(0, 5);
  const std::string state = "hipd_state=x\n";
  const struct {
    std::string text;
    int running, helmsman, tunnel;
  } cases[] = {
      {fresh + state + "peers.count=1\nhelmsman.up=true\n", 1, 1, 1},
      {fresh + state + "peers.count=0\nhelmsman.up=TRUE\n", 1, 2, 2},
      {fresh + state + "peers.count=abc\nhelmsman.up=true\x80\n", 1, 1, 2},
      {fresh + state + "helmsman.up=true\nhelmsman.up=no\n", 1, 2, 3},
      {fresh + state, 1, 3, 3},
      {fresh + "peers.count=1\nhelmsman.up=true\n", 1, 3, 3},
      {times(0, 4) + state + "peers.count=1\nhelmsman.up=true\n", 1, 3, 3},
      {times(4, 5) + state, 1, 3, 3},
      {times(6, 5) + state + "helmsman.up=true\n", 2, 3, 3},
      {times(-100, 5), 1, 3, 3},
      {"uptime.now=x\nuptime.started=1\n", 2, 3, 3},
      {"uptime.now=-9223372036854775808\nuptime.started=1\n", 2, 3, 3},
      {"uptime.now=9223372036854775807\nuptime.started=-2\n" + state, 1, 3, 3},
      {"uptime.now=1\n", 3, 3, 3},
      {"uptime.started=1\n", 3, 3, 3},
      {"", 3, 3, 3},
  };
  ServiceHost host;
  long before = 0;
  TriState at_five = TriState::kUnknown;
  do {  // until the clock stands still in between
    before = time(nullptr);
    host.status("one", 5);
    at_five = isDaemonRunning();
  } while (time(nullptr) != before);
  EXPECT_EQ(at_five, TriState::kYes);
  for (const auto& c : cases) {
    host.file("one/hipvars.txt", c.text);
    ServiceState found;
    EXPECT_TRUE(readServiceState(&found).ok()) << c.text;
    EXPECT_EQ(static_cast<int>(found.running), c.running) << c.text;
    EXPECT_EQ(static_cast<int>(found.helmsman), c.helmsman) << c.text;
    EXPECT_EQ(static_cast<int>(found.tunnel), c.tunnel) << c.text;
  }
  host.status("one", 0, "hipd_state=x\npeers.count=2\nhelmsman.up=no\n");
  EXPECT_EQ(host.says("service status", RunAs::kOrdinaryUser),
            "running: true\nhelmsman: false\ntunnel: true\n");
  host.file(".current", "two\n");
  EXPECT_EQ(host.says("service status"), "running: false\nhelmsman: false\ntunnel: false\n");
}

TEST(Activate, CallsByProfileAndDaemon) {
  const struct {
    Daemon daemon;
    const char* selector;
    Calls calls;
    const char* current;
  } cases[] = {
      {Daemon::kUp, "one", {}, "one\n"},
      {Daemon::kDown, "--active", {kStart}, "one\n"},
      {Daemon::kUnknown, "dir=one", {kStart}, "one\n"},
      {Daemon::kUp, "two", {kStop, kStart}, "two\n"},
      {Daemon::kDown, "two", {kStop, kStart}, "two\n"},
  };
  for (const auto& c : cases) {
    ServiceHost host(c.daemon);
    const std::string name = std::string(c.current).substr(0, 3);
    EXPECT_EQ(host.run({"profile", "activate", c.selector}).out, "profile_name: " + name + "\n");
    EXPECT_EQ(host.calls(), c.calls) << c.selector;
    EXPECT_EQ(host.read(".current"), c.current);
  }
}

TEST(Activate, FailuresDoNotLeaveTheServiceStopped) {
  ServiceHost host;
  EXPECT_EQ(host.run({"profile", "activate", ""}).out, failure("invalid argument", "0x10000003"));
  EXPECT_EQ(host.says("profile activate three"), failure("profile not found", "0x12001001"));
  EXPECT_EQ(host.calls(), Calls());
  host.file("/tmp/stand-in-end", "signal 9\nexit 0\n");
  EXPECT_EQ(host.says("profile activate two"),
            failure("child process terminated by a signal", "0x16001002"));
  EXPECT_EQ(host.read(".current"), "two\n");
  ASSERT_EQ(unlink("/opt/vrx/profiles/.current"), 0);
  host.file(".current/in-its-place", "");
  EXPECT_EQ(host.says("profile activate one"), kApplication);
  EXPECT_EQ(host.calls(), (Calls{kStop, kStart, kStop, kStart}));
}

TEST(Create, WithActivate) {
  const Words create = {"profile", "create", "new", "helmsman=h", "activate", "--quiet"};
  for (const Daemon daemon : {Daemon::kDown, Daemon::kUp, Daemon::kUnknown}) {
    ServiceHost host(daemon);
    // The stop's own failure is not told.
    if (daemon != Daemon::kDown) host.file("/tmp/stand-in-end", "exit 1\n");
    EXPECT_EQ(host.run(create).out.rfind("details:\nprofile_name=new\n", 0), 0u);
    EXPECT_EQ(host.calls(), daemon == Daemon::kDown ? Calls{kStart} : (Calls{kStop, kStart}));
    EXPECT_EQ(host.read(".current"), "profile-123123\n");
  }
  for (const Daemon daemon : {Daemon::kDown, Daemon::kUp}) {
    ServiceHost host(daemon);
    ASSERT_EQ(rename("/opt/vrx/profiles/.factory", "/opt/vrx/profiles/.gone"), 0);
    EXPECT_EQ(host.run(create).out, "status_code: 0x14000002\n");
    EXPECT_EQ(host.calls(), daemon == Daemon::kDown ? Calls() : (Calls{kStop, kStart}));
    EXPECT_EQ(host.read(".current"), "one\n");
  }
  ServiceHost host;
  ASSERT_EQ(unlink("/opt/vrx/profiles/.current"), 0);
  host.file(".current/in-its-place", "");
  EXPECT_EQ(host.run(create).out, "status_code: 0x12000001\n");
  EXPECT_EQ(host.calls(), Calls{kStart});
}

TEST(Delete, Refusals) {
  ServiceHost host(Daemon::kUp);
  const std::string invalid = failure("invalid argument", "0x10000003");
  for (const char* selector : {".factory", "dir=.factory", ".current"}) {
    EXPECT_EQ(host.run({"profile", "delete", selector}).out, invalid) << selector;
  }
  EXPECT_EQ(host.says("profile delete --active"), kRefusedRunning);
  EXPECT_EQ(host.says("profile delete two", RunAs::kOrdinaryUser), kRefusedUser);
  host.file(".current", ".factory\n");
  EXPECT_EQ(host.says("profile delete --active"), invalid);
  EXPECT_TRUE(host.exists("one/hip.conf") && host.exists("two/hip.conf") &&
              host.exists(".factory/hip.conf"));
}

TEST(Delete, NothingIsMadeUpForAFailure) {
  ServiceHost host;
  host.file("one/busy/x", "");
  ASSERT_EQ(mount("none", "/opt/vrx/profiles/one/busy", "tmpfs", 0, nullptr), 0);
  EXPECT_EQ(host.says("profile delete one"), kApplication);
  ASSERT_EQ(umount("/opt/vrx/profiles/one/busy") + unlink("/opt/vrx/profiles/.current"), 0);
  host.file(".current/in-its-place", "");
  EXPECT_EQ(host.says("profile delete dir=one"), "");
  EXPECT_FALSE(host.exists("profile-123123")) << "two is left";
}

TEST(Delete, TheLastOneIsReplaced) {
  ServiceHost host;
  host.file("one/ca-certs/deep/x", "").file("/tmp/kept", "outside");
  ASSERT_EQ(symlink("/tmp", "/opt/vrx/profiles/one/peer_certs"), 0);
  ASSERT_EQ(symlink("nowhere", "/opt/vrx/profiles/one/dead"), 0);
  EXPECT_EQ(host.says("profile delete one"), "");
  EXPECT_EQ(host.read(".current"), "two\n");
  EXPECT_EQ(host.read("/tmp/kept"), "outside");
  EXPECT_FALSE(host.exists("one"));
  EXPECT_EQ(host.says("profile delete --active"), "");
  EXPECT_EQ(host.says("list profiles"),
            "profile-123123: profile\ncurrent_dir: two\ncurrent_name: two\n"
            "root_dir: /opt/vrx//profiles/\n");
  EXPECT_EQ(host.read("profile-123123/mapconfig.static"), "map_uri=\n");
  EXPECT_EQ(host.read("profile-123123/hip.conf"), "master_interface=auto\n");
}

TEST(Rename, Names) {
  const struct {
    const char* name;
    const char* details;  // null: renamed
  } cases[] = {{"three", nullptr},
               {"dir=x", nullptr},
               {"", "profile name not provided"},
               {"two", "invalid profile name"},
               {"one", "invalid profile name"},
               {"dir=two", "invalid profile name"},
               {".current", "invalid profile name"},
               {"--active", "invalid profile name"},
               {".factory", "invalid profile name"},
               {"a\nb", "value holds a line break"}};
  for (const auto& c : cases) {
    ServiceHost host(Daemon::kUp);
    if (c.name[0] == '.' || c.name[0] == '-') unlink("/opt/vrx/profiles/.current");
    const std::string out =
        host.run({"profile", "rename", "one", std::string("new_name=") + c.name}).out;
    const std::string name = c.name;
    EXPECT_EQ(out,
              c.details == nullptr
                  ? "profile_name: " + name + "\n"
                  : failure("invalid argument (" + std::string(c.details) + ")", "0x10000003"));
    EXPECT_EQ(host.read("one/profile_name"), (c.details == nullptr ? name : "one") + "\n");
  }
}

TEST(Modify, ChangesOnlyWhatIsGiven) {
  ServiceHost host;
  const std::string endbox = "# mine\nactivation_code=abc\n";
  host.file("two/endbox.conf", endbox).file("two/hip.conf", "x\n");
  host.file("two/mapconfig.static", "map_uri=http://old:1/path\n", 0600);
  host.file("two/sadb.state", "").file("two/peers", "").file("two/kept", "");
  EXPECT_EQ(host.says("profile modify two").rfind("details:\nprofile_name=two\n", 0), 0u);
  EXPECT_EQ(host.read("two/endbox.conf"), endbox);
  EXPECT_EQ(host.read("two/hip.conf"), "x\n");
  EXPECT_EQ(host.read("two/mapconfig.static"), "map_uri=http://old:1/path\n");
  EXPECT_FALSE(host.exists("two/sadb.state") || host.exists("two/peers"));
  EXPECT_TRUE(host.exists("two/kept"));

  EXPECT_EQ(host.says("profile modify two helmsman=:9000 log_level=WARN network=auto "
                      "invitation=### new_name=three activate"),
            "details:\nprofile_name=three\nhelmsman=old:9000\nprofile_dir=two\nnetwork=auto\n"
            "deviceID=\noverlay_device_ip=\noverlay_mask=\ninvitation=\nlog_level=warning\n");
  EXPECT_EQ(host.read("two/endbox.conf"), "# mine\nlog_level=warning\nopenhip.log_level=warning\n");
  EXPECT_EQ(host.read("two/mapconfig.static"), "map_uri=https://old:9000\n");
  EXPECT_EQ(host.mode("two/mapconfig.static"), 0600u);
  EXPECT_EQ(host.calls(), Calls()) << "neither current nor running: nothing to restart";
  const std::pair<const char*, const char*> hosts[] = {
      {"h:0", "h:8096"}, {"h:1", "h:1"},        {":65535", "h:65535"},
      {":0", "h:65535"}, {":65536", "h:65535"}, {"h:65536", "h:8096"}};
  for (const auto& [given, address] : hosts) {
    EXPECT_EQ(host.run({"profile", "modify", "dir=two", std::string("helmsman=") + given}).exit, 0);
    EXPECT_EQ(host.read("two/mapconfig.static"), "map_uri=https://" + std::string(address) + "\n");
  }
  const std::pair<const char*, const char*> levels[] = {
      {"error", "error"}, {"Warning", "Warning"}, {"info", "info"},    {"DEBUG", "DEBUG"},
      {"trace", "trace"}, {"fatal", "fatal"},     {"wArn", "warning"}, {"Err", "error"}};
  for (const auto& [given, level] : levels) {
    EXPECT_EQ(host.run({"profile", "modify", "dir=two", std::string("log_level=") + given}).exit,
              0);
    std::string expected = "# mine\nlog_level=";
    expected.append(level).append("\nopenhip.log_level=").append(level).append("\n");
    EXPECT_EQ(host.read("two/endbox.conf"), expected);
  }
}

TEST(Modify, FailuresAndTheirOrder) {
  ServiceHost host(Daemon::kUp);
  EXPECT_EQ(host.says("profile modify three", RunAs::kOrdinaryUser),
            failure("profile not found", "0x12001001"));
  EXPECT_EQ(host.run({"profile", "modify", "two", "new_name=a\nb"}, RunAs::kOrdinaryUser).out,
            kRefusedUser);
  EXPECT_EQ(host.says("profile modify two new_name=one helmsman=h"),
            failure("invalid argument (invalid profile name)", "0x10000003"));
  for (const char* value : {"helmsman=a\nb", "network=a\nb", "invitation=a\nb"}) {
    EXPECT_EQ(host.run({"profile", "modify", "two", value}).out,
              failure("invalid argument (value holds a line break)", "0x10000003"));
  }
  EXPECT_FALSE(host.exists("two/mapconfig.static") || host.exists("two/endbox.conf"));
  EXPECT_EQ(host.says("profile modify two helmsman=:1"), kApplication);
  EXPECT_EQ(host.says("profile modify two helmsman=h log_level=verbose network=eth1"),
            failure("application error (invalid log_level value)", "0x12000001"));
  EXPECT_EQ(host.read("two/mapconfig.static"), "map_uri=https://h:8096\n");
  EXPECT_EQ(host.read("two/hip.conf"), "");
  // The refused reset of a running profile shows unless a network or name comes after it.
  EXPECT_EQ(host.says("profile modify one invitation=x"), kRefusedRunning);
  EXPECT_EQ(host.read("one/endbox.conf"), "activation_code=x\n");
  EXPECT_EQ(host.says("profile modify one network=eth1 --quiet").rfind("details:", 0), 0u);
  EXPECT_TRUE(host.exists("one/hipvars.txt"));
  host.file("two/endbox.conf/in-its-place", "");
  EXPECT_EQ(host.says("profile modify two log_level=info"), kApplication);
}

TEST(Modify, RestartAroundTheChange) {
  {
    ServiceHost host(Daemon::kUp);
    EXPECT_EQ(host.says("profile modify one invitation=x activate").rfind("details:", 0), 0u);
    EXPECT_EQ(host.calls(), (Calls{kStop, kStart}));
    EXPECT_FALSE(host.exists("one/hipvars.txt")) << "the stopped daemon's state is cleared";
  }
  {
    ServiceHost host(Daemon::kDown);
    EXPECT_EQ(host.says("profile modify one activate").rfind("details:", 0), 0u);
    EXPECT_EQ(host.calls(), Calls{kStart});
  }
  const struct {
    const char* ends;
    const char* level;
    std::string out;
  } cases[] = {{"exit 1\nexit 0\n", "log_level=info", kNonzero},
               {"exit 1\nexit 0\n", "log_level=bad", kNonzero},
               {"exit 0\nexit 1\n", "log_level=info", kNonzero},
               {"exit 0\nexit 1\n", "log_level=bad",
                failure("application error (invalid log_level value)", "0x12000001")}};
  for (const auto& c : cases) {
    ServiceHost host(Daemon::kUnknown);
    host.file("/tmp/stand-in-end", c.ends);
    EXPECT_EQ(host.run({"profile", "modify", "two", c.level, "activate"}).out, c.out);
    EXPECT_EQ(host.calls(), (Calls{kStop, kStart}));
  }
}

TEST(Reset, RemovesStateFilesOfAStoppedProfile) {
  ServiceHost host(Daemon::kUp);
  const Words files = {"m2_cache", "sadb.state", "hip.state", "peers", "map.state", "hipvars.txt"};
  for (const std::string& file : files) host.file("two/" + file, "");
  host.file("one/peers", "");
  EXPECT_EQ(host.says("support reset one"), kRefusedRunning);
  EXPECT_TRUE(host.exists("one/peers"));
  EXPECT_EQ(host.says("support reset two"), "profile_name: two\n");
  for (const std::string& file : files) EXPECT_FALSE(host.exists("two/" + file)) << file;
  EXPECT_TRUE(host.exists("two/hip.conf"));
}

pid_t runInBackground(const TestHost& host, const Words& words) {
  const pid_t child = fork();
  if (child == 0) {
    close_range(3, ~0U, 0);  // a lock that this process holds is not the child's
    _exit(host.run(words).exit == 0 && !testing::Test::HasFailure() ? 0 : 1);
  }
  return child;
}

int exitOf(pid_t child) {
  int status = -1;
  return waitpid(child, &status, 0) == child ? status : -1;
}

TEST(Concurrency, ChangesWaitForTheLock) {
  for (const Words& words : {Words{"profile", "create", "x", "helmsman=h"},
                             {"profile", "activate", "two"},
                             {"profile", "delete", "two"},
                             {"profile", "rename", "two", "new_name=x"},
                             {"profile", "modify", "two", "network=x"},
                             {"support", "reset", "two"}}) {
    ServiceHost host;
    host.file("/tmp/lock/keep", "");  // this process makes the directory only once
    pid_t child = -1;
    {
      const ProfileLock lock;
      child = runInBackground(host, words);
      const long deadline = time(nullptr) + 10;
      while (host.read("/proc/locks").find("->") == std::string::npos) {
        ASSERT_LT(time(nullptr), deadline) << words[1] << " does not wait";
      }
    }
    EXPECT_EQ(exitOf(child), 0);
  }
}

}  // namespace
}  // namespace tunadm
