// The service and the changes of a profile that go with it, with stand-ins for the init systems.

#include <sys/file.h>

#include <chrono>
#include <future>
#include <thread>

#include "fundkit/ScopedFd.h"
#include "service/ServiceStatus.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using Lines = std::vector<std::string>;

const std::string kStart = "/bin/systemctl systemctl start quenlay\n";
const std::string kStop = "/bin/systemctl systemctl stop quenlay\n";
// The same by the other init system that the host has the programs of.
const std::string kInitdStart = "/etc/init.d/quenlay quenlay start\n";
const std::string kInitdStop = "/usr/bin/killall killall /usr/sbin/quenlay\n";

const std::string kRefusedRunning =
    failure("command cannot be executed while the profile is running", "0x12001002");
const std::string kNonzero = failure("child process returned nonzero exit code", "0x16001001");
const std::string kRefusedUser =
    failure("authentication error (tunadm requires sudo for this command)", "0x12000002");
const std::string kNotFound = failure("profile not found", "0x12001001");
const std::string kApplication = failure("application error", "0x12000001");
const std::string kInvalid = failure("invalid argument", "0x10000003");
const std::string kInvalidName = failure("invalid argument (invalid profile name)", "0x10000003");
const std::string kInvalidLevel =
    failure("application error (invalid log_level value)", "0x12000001");

enum class Daemon { kDown, kUp, kUnknown };

// A host run by systemd with the profiles "one" (current) and "two".
struct ServiceHost : TestHost {
  explicit ServiceHost(Daemon daemon = Daemon::kDown) {
    factory().profile("one", "one").profile("two", "two").file(".current", "one\n", 0666);
    file("/opt/vrx/.systemctl", "").standIn("/bin/systemctl").standIn("/usr/bin/killall");
    standIn("/etc/init.d/quenlay");
    // An update of the far future counts as one of now, however long the test takes.
    if (daemon == Daemon::kUp) file("one/hipvars.txt", times(-1000000, 5));
    if (daemon == Daemon::kUnknown) file("one/hipvars.txt", "uptime.now=1\n");
  }

  // What the daemon's status file holds that was written so many seconds ago.
  static std::string times(long age, long uptime) {
    const long now = time(nullptr) - age;
    return "uptime.now=" + std::to_string(now) +
           "\nuptime.started=" + std::to_string(now - uptime) + "\n";
  }

  // The calls of the stand-ins: a line "<path> <argument 0> <argument 1> ..." for each.
  std::string calls() const { return read("/tmp/calls"); }
};

TEST(Service, EachInitSystemIsCalledInItsOwnWay) {
  const std::string systemd = kStart + kStop + "/bin/systemctl systemctl restart quenlay\n";
  const std::string initd = kInitdStart + kInitdStop + "/etc/init.d/quenlay quenlay restart\n";
  const std::pair<std::string, std::string> cases[] = {
      {"upstart",
       "/sbin/initctl initctl start hip\n/sbin/initctl initctl stop hip\n"
       "/sbin/initctl initctl restart hip\n"},
      {"systemd", systemd},
      {"bogus", systemd},
      {"initd", initd},
      {"", initd},
      {"null", ""},
      {"launchd", ""}};
  for (const auto& [system, calls] : cases) {
    TestHost host;
    EXPECT_EQ(host.says("service start sys=" + system), kNonzero) << "no init system";
    host.standIn("/bin/systemctl").standIn("/sbin/initctl").standIn("/usr/bin/killall");
    host.standIn("/etc/init.d/quenlay");
    for (const char* verb : {"service start sys=", "service stop sys=", "service bounce sys="})
      EXPECT_EQ(host.says(verb + system), calls.empty() ? kNonzero : "") << verb << system;
    EXPECT_EQ(host.read("/tmp/calls"), calls) << system;
  }
  TestHost host;  // without a sign of any system, none is asked
  host.standIn("/bin/systemctl").standIn("/sbin/initctl");
  EXPECT_EQ(host.says("service start"), kNonzero);
  EXPECT_EQ(host.read("/tmp/calls"), "");
}

TEST(Service, OrdinaryUsersAreRefused) {
  ServiceHost host;
  host.file("one/profile_name", "one\n", 0644);
  for (const char* line :
       {"service start", "service stop", "service restart", "profile create a\nb helmsman=h",
        "profile delete two", "profile rename two new_name=x", "support reset two"}) {
    const Outcome refused = host.run(std::string("/usr/sbin/tunadm ") + line, RunAs::kOrdinaryUser);
    EXPECT_EQ(refused.err + refused.out, kRefusedUser) << line;
  }
  EXPECT_EQ(host.says("profile modify dir=three", RunAs::kOrdinaryUser), kNotFound);
  const Outcome unsure =
      host.run("/usr/sbin/tunadm profile modify two new_name=a\nb", RunAs::kOrdinaryUser);
  EXPECT_EQ(unsure.out, kRefusedUser) << "who cannot read the names cannot know";
  EXPECT_EQ(
      unsure.err,
      "W~ tunadm ProfileList.cpp listStore: the names of profiles can be read and repaired by "
      "root only; read /opt/vrx/profiles/two/profile_name: Permission denied\n");
  EXPECT_FALSE(host.exists("/tmp/lock")) << "the lock directory is root's to make";
  EXPECT_EQ(host.calls(), "");
  // What activate needs is up to the marker's mode and the init system.
  host.file("/tmp/calls", "", 0666);
  EXPECT_EQ(host.says("profile activate dir=two", RunAs::kOrdinaryUser), "profile_name: two\n");
  EXPECT_EQ(host.calls(), kStop + kStart);
}

TEST(Service, RefusalsChangeNothing) {
  ServiceHost host(Daemon::kUp);
  host.block("two/endbox.conf");
  const std::pair<std::string, Lines> cases[] = {
      {kNotFound,
       {"profile activate three", "profile rename three new_name=x", "profile delete three",
        "support reset three", "list log three"}},
      {kInvalid,
       {"profile activate ", "profile delete .factory", "profile delete dir=.factory",
        "profile delete .current"}},
      {failure("invalid argument (value holds a line break)", "0x10000003"),
       {"profile create a\nb helmsman=h", "profile create a helmsman=h\nmap_uri=evil",
        "profile create a helmsman=h network=eth0\n", "profile create a helmsman=h invitation=a\nb",
        "profile modify two helmsman=a\nb", "profile modify two network=a\nb",
        "profile modify two invitation=a\nb", "profile rename one new_name=a\nb"}},
      {kInvalidName,
       {"profile modify two new_name=one helmsman=h", "profile rename one new_name=two",
        "profile rename one new_name=one", "profile rename one new_name=dir=two",
        "profile rename one new_name=.factory"}},
      {failure("invalid argument (profile name not provided)", "0x10000003"),
       {"profile rename one new_name="}},
      {kApplication, {"profile modify two helmsman=:1", "profile modify two log_level=info"}},
      {kRefusedRunning, {"profile delete --active", "support reset one"}},
  };
  const std::string before = host.run("/bin/ls -lR --full-time /opt").out;
  for (const auto& [out, lines] : cases) {
    for (const std::string& words : lines) {
      const Outcome refused = host.run("/usr/sbin/tunadm " + words);
      EXPECT_EQ(refused.out, out) << words;
      EXPECT_EQ(refused.err.empty(), out != kApplication) << words << ": " << refused.err;
    }
  }
  EXPECT_EQ(host.run("/bin/ls -lR --full-time /opt").out, before);
  EXPECT_EQ(host.calls(), "");
  host.file(".current", ".factory\n");
  EXPECT_EQ(host.says("profile delete --active"), kInvalid);
  host.remove(".current");  // Its selectors are no names even while nothing is current.
  EXPECT_EQ(host.says("profile rename one new_name=.current"), kInvalidName);
  EXPECT_EQ(host.says("profile rename one new_name=--active"), kInvalidName);
}

TEST(ServiceStatus, Branches) {
  const std::string fresh = ServiceHost::times(0, 5);
  const std::string state = "hipd_state=x\n";
  const std::string connected = "peers.count=1\nhelmsman.up=true\n";
  const std::pair<std::string, const char*> cases[] = {
      // Whether the daemon, its helmsman and its tunnel are up: yes, no, unknown.
      {fresh + state + connected, "yyy"},
      {fresh + state + "peers.count=0\nhelmsman.up=TRUE\n", "ynn"},
      {fresh + state + "peers.count=abc\nhelmsman.up=true\x80\n", "yyn"},
      {fresh + state + "helmsman.up=true\nhelmsman.up=no\n", "yn?"},
      {fresh + connected, "y??"},
      {ServiceHost::times(0, 4) + state + connected, "y??"},
      {ServiceHost::times(4, 4), "y??"},
      {ServiceHost::times(6, 5) + state + connected, "n??"},
      {ServiceHost::times(-100, 5), "y??"},
      {"uptime.now=-9223372036854775808\nuptime.started=1\n", "n??"},
      {"uptime.now=9223372036854775807\nuptime.started=-2\n" + state, "y??"},
      {"uptime.now=1\n", "???"},
  };
  ServiceHost host;
  const auto letter = [](TriState truth) { return "-yn?"[static_cast<int>(truth)]; };
  for (const auto& [text, expected] : cases) {
    host.file("one/hipvars.txt", text);
    ServiceState found;
    EXPECT_TRUE(readServiceState("/opt/vrx/profiles/one/hipvars.txt", &found).ok()) << text;
    const std::string shown = {letter(found.running), letter(found.helmsman), letter(found.tunnel)};
    EXPECT_EQ(shown, expected) << text;
  }
  host.file("one/hipvars.txt",
            ServiceHost::times(-1000, 5) + state + "peers.count=2\nhelmsman.up=no\n");
  EXPECT_EQ(host.says("service status", RunAs::kOrdinaryUser),
            "running: true\nhelmsman: false\ntunnel: true\n");
  host.file(".current", "two\n");
  EXPECT_EQ(host.says("service status"), "running: false\nhelmsman: false\ntunnel: false\n");
}

TEST(ServiceStatus, WaitsForAFileThatIsBeingWritten) {
  ServiceHost host;
  TriState running = TriState::kUnknown;
  // In the first round already, unless the other thread starts late.
  for (int round = 0; round < 100 && running != TriState::kYes; ++round) {
    host.file("one/hipvars.txt", "");
    const std::jthread daemon([&host] {
      usleep(30000);
      host.file("one/hipvars.txt", ServiceHost::times(0, 5));
    });
    running = isDaemonRunning("/opt/vrx/profiles/one/hipvars.txt");
  }
  EXPECT_EQ(running, TriState::kYes);
}

TEST(Service, IsStoppedAndStartedAroundAChange) {
  const std::string create = "profile create new helmsman=h activate --quiet";
  const std::string created = "details:\nprofile_name=new\n";
  const std::string modify_two = "profile modify two activate log_level=";
  const std::string no_factory = "status_code: 0x14000002\n";
  const std::string no_start = "status_code: 0x16001001\n";
  const struct {
    Daemon daemon;
    std::string words, out, calls;  // of the output, what it begins with
    std::string current = "one";
    const char* ends = "";  // of the stop and the start
  } cases[] = {
      {Daemon::kUp, "profile activate one", "profile_name: one\n", ""},
      {Daemon::kDown, "profile activate --active", "profile_name: one\n", kStart},
      {Daemon::kUnknown, "profile activate dir=one", "profile_name: one\n", kStart},
      {Daemon::kUp, "profile activate two sys=initd", "profile_name: two\n",
       kInitdStop + kInitdStart, "two"},
      {Daemon::kDown, "profile activate two", "profile_name: two\n", kStop + kStart, "two"},
      // A stop that fails is not reported.
      {Daemon::kDown, create, created, kStart, "profile-123123"},
      {Daemon::kUp, create, created, kStop + kStart, "profile-123123", "exit 1\n"},
      {Daemon::kUnknown, create, created, kStop + kStart, "profile-123123", "exit 1\n"},
      {Daemon::kDown, create, no_start, kStart, "profile-123123", "exit 1\n"},
      {Daemon::kDown, create, no_factory, ""},
      {Daemon::kUnknown, create, no_factory, kStop + kStart},
      {Daemon::kDown, "profile modify one activate", "details:", kStart},
      {Daemon::kDown, "profile modify two activate", "details:", ""},
      {Daemon::kUp, "profile modify one activate invitation=x sys=initd",
       "details:", kInitdStop + kInitdStart},
      {Daemon::kUnknown, modify_two + "info", kNonzero, kStop + kStart, "one", "exit 1\nexit 0\n"},
      {Daemon::kUnknown, modify_two + "bad", kNonzero, kStop + kStart, "one", "exit 1\nexit 0\n"},
      {Daemon::kUnknown, modify_two + "info", kNonzero, kStop + kStart, "one", "exit 0\nexit 1\n"},
      {Daemon::kUnknown, modify_two + "bad", kInvalidLevel, kStop + kStart, "one",
       "exit 0\nexit 1\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.words + ", daemon " + std::to_string(static_cast<int>(c.daemon)));
    ServiceHost host(c.daemon);
    host.file("/tmp/stand-in-end", c.ends);
    if (c.out == no_factory) host.remove(".factory");
    EXPECT_EQ(host.says(c.words).substr(0, c.out.size()), c.out);
    EXPECT_EQ(host.calls(), c.calls);
    EXPECT_EQ(host.read(".current"), c.current + "\n");
    // Of a stopped daemon's profile that is modified, the state is cleared.
    const bool cleared = c.words.starts_with("profile modify one");
    EXPECT_EQ(host.exists("one/hipvars.txt"), c.daemon != Daemon::kDown && !cleared);
  }
}

TEST(Service, NoFailureLeavesItStopped) {
  ServiceHost host;
  host.file("/tmp/stand-in-end", "signal 9\nexit 0\n").file("one/hipvars.txt", host.times(0, 5));
  const Outcome unstopped = host.run("/usr/sbin/tunadm profile activate two");
  EXPECT_EQ(unstopped.out, failure("child process terminated by a signal", "0x16001002"));
  EXPECT_EQ(unstopped.err,
            "W~ tunadm CurrentProfile.cpp setCurrentAfterStop: the daemon was not stopped and is "
            "still reported as running with another profile; running with = one; current = two\n"
            "E~ tunadm Program.cpp sayWhy: profile activate: /bin/systemctl stop quenlay: signal "
            "9\n");
  EXPECT_EQ(host.read(".current"), "two\n");
  host.block(".current");
  EXPECT_EQ(host.says("profile activate one"), kApplication);
  EXPECT_EQ(host.says("profile create new helmsman=h activate sys=initd"), kApplication);
  EXPECT_EQ(host.calls(), kStop + kStart + kStop + kStart + kInitdStart);
}

TEST(Rename, LeavesTheFileOfANameThatIsTheSame) {
  ServiceHost host;
  const std::string rename = "profile rename dir=two new_name=dir=x";
  EXPECT_EQ(host.says(rename), "profile_name: dir=x\n");
  EXPECT_EQ(host.read("two/profile_name"), "dir=x\n");
  host.file("two/profile_name", "dir=x\nkept\n");
  EXPECT_EQ(host.says(rename), "profile_name: dir=x\n");
  EXPECT_EQ(host.read("two/profile_name"), "dir=x\nkept\n");
}

TEST(Concurrency, ChangesWaitForTheLock) {
  ServiceHost host;
  host.profile("three", "three").profile("four", "four").profile("five", "five");
  const auto before = host.file("/tmp/lock/profiles.lock", "").files();
  ScopedFd lock(open("/tmp/lock/profiles.lock", O_RDWR | O_CLOEXEC));
  EXPECT_EQ(flock(lock.get(), LOCK_EX), 0);
  std::string commands, warnings, ends;
  for (const std::string words :
       {"profile activate two", "profile create x helmsman=h", "profile delete three",
        "profile modify four network=x", "profile rename five new_name=y", "support reset one"}) {
    commands.append("(timeout 20 tunadm ").append(words + "; echo ").append(words);
    commands += ": $?) >>/tmp/said 2>&1 &\n";
    warnings += "W~ tunadm LockFile LockFile: waiting for the lock held by process " +
                std::to_string(getpid()) + "\n";
    ends += words + ": 0\n";
  }
  auto said = std::async(std::launch::async, [&host, &commands] {
    return host.shell(commands + "wait\ngrep -E '~|status|: [0-9]' /tmp/said | LC_ALL=C sort");
  });
  while (host.shell("cat /tmp/said") != warnings &&
         said.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
  }
  EXPECT_EQ(host.files(), before);
  EXPECT_EQ(lock.close(), 0);
  EXPECT_EQ(said.get(), warnings + ends);
}

}  // namespace
}  // namespace tunadm
