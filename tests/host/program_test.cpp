// The program as its users run it: command lines and what they print.

#include <algorithm>

#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

const std::string kOfficeDetails =
    "details:\nprofile_name=office\nhelmsman=10.0.0.1:8096\nprofile_dir=profile-123123\n"
    "network=eth0\ndeviceID=device-1\noverlay_device_ip=1.2.3.4\noverlay_mask=255.0.0.0\n"
    "invitation=abc\nlog_level=info\n";
const std::string kCreateOffice =
    "profile create office helmsman=10.0.0.1:8096 network=eth0 invitation=abc";
const std::string kApplication = failure("application error", "0x12000001");
const std::string kNotFound = failure("profile not found", "0x12001001");

// What all the other tests of the program rely on.
TEST(Host, MachineIsOutOfReach) {
  TestHost host;
  EXPECT_EQ(access("/usr/lib", W_OK), -1);
  EXPECT_EQ(errno, EROFS);
  EXPECT_TRUE(host.exists("/proc/1/root/.throwaway-host")) << "a process of the machine is seen";
  for (const char* path : {"/boot", "/etc/hostname", "/var/lib"})
    EXPECT_FALSE(host.exists(path)) << path;
}

TEST(Program, WithoutACommand) {
  TestHost host;
  const Outcome alone = host.run("/usr/sbin/tunadm");
  EXPECT_EQ(alone.exit, 0);
  EXPECT_EQ(alone.out,
            "Usage: /usr/sbin/tunadm json <command request object>\n"
            "   or: /usr/sbin/tunadm <two-word command name> <command-specific params>\n"
            "   or: /usr/sbin/tunadm help   (for a command list and short summaries)\n");
  EXPECT_EQ(host.run("/usr/sbin/tunadm profile create").exit, 1);
  for (const char* words : {"", "profile create"})
    EXPECT_EQ(host.says(words), "invalid command name\n") << words;
  for (const std::string words :
       {"list profiles all", "list profiles --JSON", "profile create x",
        "profile create x helmsman=", "list log x max_lines=1x", "json {} extra"}) {
    const Outcome outcome = host.run("/usr/sbin/tunadm " + words);
    EXPECT_EQ(outcome.exit, 1);
    EXPECT_EQ(outcome.out, "invalid command arguments\n") << words;
    EXPECT_EQ(outcome.err, "") << words;
  }
}

TEST(Program, SaysOnceWhenItsResultCannotBeWritten) {
  TestHost host;
  host.profile("a", "a").file("a/hip.log", std::string(400000, 'x'));  // more than one write takes
  const auto said = [&host](const std::string& line) {
    const Outcome outcome = host.runWords({"/bin/sh", "-c", line});
    EXPECT_EQ(outcome.exit, 0);
    return outcome.err;
  };
  for (const std::string words : {"help", "list log a max_lines=1000", "json {} output=json"})
    EXPECT_EQ(said("tunadm " + words + " >/dev/full"),
              "E~ tunadm LinePrinter.cpp write: write output: No space left on device\n");
  EXPECT_EQ(said("(sleep 0.1; tunadm help) | :"), "") << "no reader needs no reason";
}

TEST(Program, SaysWhyTheSystemRefused) {
  const struct {
    std::string words, said;
    void (*prepare)(TestHost&);
    RunAs user = RunAs::kRoot;
  } cases[] = {
      {"list profiles", "E list profiles: open /opt/vrx/profiles/: No such file or directory",
       [](TestHost& host) { host.remove("/opt/vrx"); }},
      {"list profiles", "E list profiles: read /opt/vrx/profiles/one/profile_name: File too large",
       [](TestHost& host) { host.file("one/profile_name", std::string(1100000, 'x')); }},
      {"profile details office",
       "E profile details: open /opt/vrx/profiles/b/profile_name: Is a directory",
       [](TestHost& host) { host.block("b/profile_name"); }},
      {"profile rename one new_name=x",
       "E profile rename: open /opt/vrx/profiles/: Not a directory",
       [](TestHost& host) { host.remove("/opt/vrx/profiles").file("/opt/vrx/profiles", ""); }},
      // Nothing in a name reaches the terminal.
      {"profile rename dir=a\x1b[2J new_name=x",
       "E profile rename: unlink /opt/vrx/profiles/a?[2J/profile_name.temp: Is a directory",
       [](TestHost& host) { host.profile("a\x1b[2J", "a").block("a\x1b[2J/profile_name.temp"); }},
      {"profile create x helmsman=h",
       "E profile create: open /opt/vrx/profiles/.factory: No such file or directory",
       [](TestHost& host) { host.remove(".factory"); }},
      {"profile create x helmsman=h",
       "E profile create: stat /opt/vrx/profiles/.factory/gone: No such file or directory",
       [](TestHost& host) { host.file("/there", "").link("there", ".factory/gone"); }},
      {"profile create x helmsman=h",
       "W certificates not copied: open /opt/vrx/profiles/.factory/ca-certs: Not a directory",
       [](TestHost& host) { host.remove(".factory/ca-certs").file(".factory/ca-certs", ""); }},
      {"profile create x helmsman=h", "", [](TestHost& host) { host.remove(".factory/ca-certs"); }},
      {"profile modify one helmsman=:1",
       "E profile modify: open /opt/vrx/profiles/one/mapconfig.static: No such file or directory",
       nullptr},
      {"profile modify one log_level=debug",
       "E profile modify: open /opt/vrx/profiles/one/endbox.conf: not a regular file",
       [](TestHost& host) { host.block("one/endbox.conf"); }},
      {"profile modify one network=eth1",
       "W network not changed: open /opt/vrx/profiles/one/hip.conf: not a regular file",
       [](TestHost& host) { host.block("one/hip.conf"); }},
      {"profile modify one invitation=x",
       "W invitation not changed: unlink /opt/vrx/profiles/one/endbox.conf.temp: Is a directory",
       [](TestHost& host) { host.block("one/endbox.conf.temp"); }},
      {"support reset one",
       "W state file not removed: unlink /opt/vrx/profiles/one/peers: Is a directory",
       [](TestHost& host) { host.block("one/peers"); }},
      {"profile delete one",
       "W no default profile made: open /opt/vrx/profiles/.factory: No such file or directory",
       [](TestHost& host) { host.remove(".factory"); }},
      {"profile delete one",
       "W no current profile chosen: open /opt/vrx/profiles/.current: Is a directory",
       [](TestHost& host) { host.profile("two", "two").block(".current"); }},
      {"profile activate one sys=systemd",
       "E profile activate: open /opt/vrx/profiles/.current: Is a directory",
       [](TestHost& host) { host.standIn("/bin/systemctl").block(".current"); }},
      {"service stop sys=systemd",
       "E service stop: execute /bin/systemctl: No such file or directory", nullptr},
      {"service stop sys=null", "E service stop: this host has no init system to command", nullptr},
      {"service restart sys=upstart", "E service restart: /sbin/initctl restart hip: exit status 3",
       [](TestHost& host) { host.standIn("/sbin/initctl").file("/tmp/stand-in-end", "exit 3"); }},
      {"support bundle", "E support bundle: /opt/vrx/bin/vrx-sendbundle.sh: exit status 4",
       [](TestHost& host) {
         host.file("/opt/vrx/bin/vrx-sendbundle.sh", "#!/bin/sh\nexit 4\n", 0755);
       }},
      {"list log dir=one", "E list log: open /opt/vrx/profiles/one/hip.log: Permission denied",
       [](TestHost& host) { host.file("one/hip.log", "", 0); }, RunAs::kOrdinaryUser},
      // Refusals that are to be expected.
      {"profile details two", "", nullptr},
      {"profile rename one new_name=a\nb", "", nullptr},
      {"profile create one helmsman=h allow_rename=no", "", nullptr},
      {"profile delete .factory", "", nullptr},
      {"service start", "", nullptr, RunAs::kOrdinaryUser},
  };
  for (const auto& c : cases) {
    TestHost host;
    host.factory().profile("one", "one").file("one/endbox.conf", "");
    if (c.prepare != nullptr) c.prepare(host);
    std::string said = c.said;
    if (said.starts_with("E ")) said.replace(0, 2, "E~ tunadm Program.cpp sayWhy: ").append("\n");
    if (said.starts_with("W "))
      said.replace(0, 2, "W~ tunadm PassedFailure.cpp logPassedFailure: ").append("\n");
    EXPECT_EQ(host.run("/usr/sbin/tunadm " + c.words, c.user).err, said) << c.words;
  }
}

TEST(Program, CreatesAndShowsAProfile) {
  TestHost host;
  host.factory();
  const Outcome created = host.run("/usr/sbin/tunadm " + kCreateOffice);
  EXPECT_EQ(created.out, kOfficeDetails + "profile_name: office\n");
  EXPECT_EQ(created.err, "");
  EXPECT_EQ(created.exit, 0);

  const std::string profile = "profile-123123/";
  EXPECT_EQ(host.mode(profile), 0755u);
  EXPECT_EQ(host.mode(profile + "ca-certs"), 0755u);
  const struct {
    const char* name;
    mode_t mode;
    const char* content;
  } files[] = {{"profile_name", 0640, "office\n"},
               {"hip.conf", 0644, "master_interface=eth0\n"},
               {"endbox.conf", 0644,
                "device_ip=1.2.3.4\ndevice_mask=255.0.0.0\nlog_level=info\nactivation_code=abc\n"},
               {"mapconfig.static", 0640, "map_uri=https://10.0.0.1:8096\n"},
               {"ca-certs/root.pem", 0644, "certificate\n"}};
  for (const auto& file : files) {
    EXPECT_EQ(host.read(profile + file.name), file.content);
    EXPECT_EQ(host.mode(profile + file.name), file.mode) << file.name;
  }
  EXPECT_EQ(host.run("/bin/ls -A /tmp/lock").out, "") << "a lock is left behind";

  for (const char* words : {"details office", "details dir=profile-123123", "office details"})
    EXPECT_EQ(host.says(std::string("profile ") + words + " --quiet"), kOfficeDetails);
  EXPECT_EQ(host.says("list profiles --verbose"),
            "method: list profiles\nstatus_text: success\nstatus_code: 0x00000001\n"
            "profile-123123: office\n"
            "current_dir: \ncurrent_name: \nroot_dir: /opt/vrx//profiles/\n");
  host.file(".current", "profile-123123\n");
  EXPECT_EQ(host.says("show profiles"),
            "profile-123123: office\ncurrent_dir: profile-123123\ncurrent_name: office\n"
            "root_dir: /opt/vrx//profiles/\n");
  EXPECT_EQ(host.says("profile details --active"), kOfficeDetails);
  // The empty helmsman is left out.
  EXPECT_EQ(host.says("profile details .factory"),
            "details:\nprofile_name=.factory\nprofile_dir=.factory\nnetwork=auto\n"
            "deviceID=device-1\noverlay_device_ip=1.2.3.4\noverlay_mask=255.0.0.0\ninvitation=\n"
            "log_level=info\n");
}

TEST(Program, NoSuchProfile) {
  TestHost host;
  host.profile("a", "office").file("plain", "x").link("a", "link");
  for (const std::string selector : {"Office", ".current", "--active", "", "dir=", "dir=b",
                                     "dir=..", "dir=a/", "dir=plain", "dir=link"})
    EXPECT_EQ(host.says("profile details " + selector), kNotFound) << selector;
  EXPECT_EQ(host.says("profile details b --quiet"), "status_code: 0x12001001\n");
  host.remove("/opt/vrx/profiles");
  for (const char* words : {"list profiles", "profile details a"})
    EXPECT_EQ(host.says(words), kApplication);
  host.remove("/opt/vrx").link("/opt/vrx", "/opt/vrx");
  EXPECT_EQ(host.says("profile create x helmsman=h"), kApplication);
}

TEST(Create, ChoosesAFreeNameAndDirectory) {
  TestHost host;
  host.factory().profile("profile-123124", "office").file("profile-123123", "in the way");
  host.link("nowhere", "profile-123125");
  const std::pair<std::string, std::string> cases[] = {
      // What the output ends with.
      {"office helmsman=h", "profile_name: office#2\n"},
      {"profile helmsman=h", "profile_name: profile\n"},
      {" helmsman=h new_name=lab", "profile_name: lab\n"},
      {" helmsman=h", "profile_name: profile#2\n"},
      {"office helmsman=h allow_rename=no", "0x12000001\n"},
  };
  for (const auto& [words, end] : cases) {
    const std::string out = host.says("profile create " + words);
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
  EXPECT_EQ(host.says("profile create a helmsman=h:65536 invitation=### activate log_level=debug"),
            failure("child process returned nonzero exit code", "0x16001001"))
      << "there is no init system";
  EXPECT_EQ(host.read("profile-123123/hip.conf"), "master_interface=auto\n");
  EXPECT_EQ(host.read("profile-123123/endbox.conf"), "x\n");
  EXPECT_EQ(host.read("profile-123123/mapconfig.static"), "map_uri=https://h\n");
  EXPECT_EQ(host.read(".current"), "profile-123123\n");
  EXPECT_EQ(host.mode(".current"), 0666u);
  EXPECT_TRUE(host.says("profile create b helmsman=:1 network=")
                  .starts_with("details:\nprofile_name=b\nprofile_dir=profile-123124\n"));
  EXPECT_EQ(host.read("profile-123124/mapconfig.static"), "map_uri=\n");
}

TEST(Create, CopiesLinksToFilesByContentAndStopsAtTheFirstFailure) {
  TestHost host;
  host.file(".factory/hip.conf", "").file(".factory/peer_certs/x", "y");
  host.file("/tmp/target", "linked\n", 0600).file("/only_here", "");
  host.link("/tmp/target", ".factory/absolute").link("/tmp", ".factory/directory");
  // A relative target is looked up from where the command was started.
  host.link("hip.conf", ".factory/relative").link("only_here", ".factory/only_here");
  EXPECT_EQ(host.says(kCreateOffice),
            failure("invalid argument (/opt/vrx//profiles/.factory/only_here)", "0x10000003"));
  EXPECT_TRUE(host.exists("profile-123123/hip.conf"));
  EXPECT_FALSE(host.exists("profile-123123/mapconfig.static"));
  host.remove(".factory/only_here").remove("/only_here");
  EXPECT_EQ(host.says(kCreateOffice).rfind("details:", 0), 0u) << "no certificates: no matter";
  EXPECT_EQ(host.read("profile-123124/absolute"), "linked\n");
  EXPECT_EQ(host.mode("profile-123124/absolute"), 0644u);
  for (const char* name : {"relative", "directory", "peer_certs"})
    EXPECT_FALSE(host.exists(std::string("profile-123124/") + name)) << name;
}

TEST(Diagnostics, LogVersionsBundleAndInterfaces) {
  TestHost host;
  std::string log;
  for (int i = 1; i <= 80; ++i) log += "line " + std::to_string(i) + "\n";
  const std::string last_fifty = log.substr(log.find("line 31\n"));
  host.factory().profile("a", "office").file("a/hip.log", "E~ one\nI~ two\nE~ three\n");
  host.profile("b", "long").file("b/hip.log", log);
  const std::pair<const char*, std::string> cases[] = {
      {"list log office", "E~ one\nI~ two\nE~ three\nprofile_name: office\n"},
      {"show log dir=a max_lines=1", "E~ three\nprofile_name: office\n"},
      {"list log office log_level=err", "E~ one\nE~ three\nprofile_name: office\n"},
      {"list log office max_lines=0", "profile_name: office\n"},
      {"list log long", last_fifty + "profile_name: long\n"},
      {"list log long max_lines=-1", last_fifty + "profile_name: long\n"},
      {"list log .factory --verbose",
       "method: list log\nstatus_text: success with warnings\nstatus_code: 0x00000002\n"
       "no logfile available for this profile\nprofile_name: .factory\n"},
      {"list log home", kNotFound},
      {"list versions", "hipapp_version: 3.1.0\ntunadm_version: 2.2\n"},
      {"support bundle", failure("stdlib error: system", "0x14000013")},
      {"json {}", "subcommand:\n"},
  };
  for (const auto& [words, out] : cases) EXPECT_EQ(host.says(words), out) << words;
  host.file("a/hip.log", "E~ secret\n", 0600);
  EXPECT_EQ(host.says("list log dir=a", RunAs::kOrdinaryUser),
            failure("stdlib error: file open", "0x14000005"));
  const std::string interfaces = host.says("show interfaces --verbose");
  EXPECT_EQ(interfaces.rfind("method: list interfaces\nstatus_text: success\n", 0), 0u);
  EXPECT_EQ(interfaces.find("\nlo\n"), std::string::npos);
  host.file("/opt/vrx/bin/vrx-sendbundle.sh", "#!/bin/sh\nexit 3\n", 0755);
  EXPECT_EQ(host.says("support bundle"), kApplication);
  host.file("/opt/vrx/bin/vrx-sendbundle.sh", "#!/bin/sh\necho bundled\n", 0755);
  EXPECT_EQ(host.says("support bundle"), "bundled\n");
  host.file(".factory/firmware_revision", std::string(1100000, 'x'));
  EXPECT_EQ(host.says("list versions"), "hipapp_version: 2.2\ntunadm_version: 2.2\n");
}

TEST(Log, WithoutAccessOrMemory) {
  TestHost host;
  host.profile("a", "office").file("a/hip.log", std::string(8000000, 'x') + "\n", 0);
  EXPECT_EQ(host.says("list log dir=a", RunAs::kOrdinaryUser),
            failure("stdlib error: file open", "0x14000005"));
#ifndef TUNADM_SANITIZED  // the sanitizers need more
  const Outcome outcome = host.runWords(
      {"/bin/sh", "-c", "ulimit -v 6000; /usr/sbin/tunadm list log office max_lines=100000"});
  EXPECT_EQ(outcome.out, failure("stdlib error: file read", "0x14000006"));
#endif
}

// Each line takes 64 bytes, so that a write of which only some pages are there yet ends with a
// whole line.
TEST(Log, AnswersAreOfOneContentWhileItIsCutAndWrittenAnew) {
  TestHost host;
  host.profile("a", "office").file("a/hip.log", "");
  host.file("/tmp/writer", "n=10000; while n=$((n + 1)); do\n seq -f \"I~ $n %06.0f " +
                               std::string(47, 'x') +
                               "\" 100000 120000 >/opt/vrx/profiles/a/hip.log\ndone\n");
  const pid_t writer = fork();
  if (writer == 0) _exit(execl("/bin/sh", "sh", "/tmp/writer", nullptr));
  std::size_t most = 0;
  for (int round = 0; round < 200; ++round) {
    std::istringstream answer(host.says("list log office max_lines=100000"));
    most = std::max(most, answer.str().size());
    std::string line;
    std::getline(answer, line);
    for (std::string next; std::getline(answer, next) && next != "profile_name: office";
         line = next)
      ASSERT_EQ(next.substr(0, 15),
                line.substr(0, 9) + std::to_string(std::stoll(line.substr(9, 6)) + 1));
  }
  EXPECT_GT(most, 1000U);
  EXPECT_EQ(kill(writer, SIGKILL), 0);
  EXPECT_EQ(waitpid(writer, nullptr, 0), writer);
}

}  // namespace
}  // namespace tunadm
