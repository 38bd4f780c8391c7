// The program as its users run it: command lines and what they print.

#include <algorithm>

#include "tests/support/Rows.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

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

// docs/RESULTS.md shows more of them.
TEST(Program, MistakesEndItWithOne) {
  EXPECT_EQ(TestHost().shell("for words in '' 'list profiles --JSON' 'json {} extra'; do\n"
                             "  tunadm ${words:-''} 2>&1\n  echo $?\ndone\n"
                             "/usr/sbin/tunadm | head -n 1"),
            "invalid command name\n1\ninvalid command arguments\n1\n"
            "invalid command arguments\n1\n"
            "Usage: /usr/sbin/tunadm json <command request object>\n");
}

TEST(Program, SaysOnceWhenItsResultCannotBeWritten) {
  TestHost host;
  host.profile("a", "a").file("a/hip.log", std::string(400000, 'x'));  // more than one write takes
  for (const std::string words : {"help", "list log a max_lines=1000", "json {} output=json"})
    EXPECT_EQ(host.shell("tunadm " + words + " >/dev/full && echo done"),
              "E~ tunadm LinePrinter.cpp write: write output: No space left on device\ndone\n");
  EXPECT_EQ(host.shell("(sleep 0.1; tunadm help; echo $? >&2) | :"), "0\n")
      << "no reader needs no reason, nor does it end the program";
}

// With these a shell prepares the host for a command.
const char kShellFunctions[] =
    "block() { rm -rf $1; mkdir -p $1/in-its-place; }\n"
    "failing() { mkdir -p ${1%/*}; printf '#!/bin/sh\\nexit 3\\n' >$1; chmod 755 $1; }\n";

// What the program says on standard error; "W " leads a warning.
std::string message(const std::string& words, const std::string& said) {
  if (said.empty()) return "";
  const std::string command = words.substr(0, words.find(' ', words.find(' ') + 1));
  return (said.starts_with("W ") ? "W~ tunadm PassedFailure.cpp logPassedFailure: " + said.substr(2)
                                 : "E~ tunadm Program.cpp sayWhy: " + command + ": " + said) +
         "\n";
}

TEST(Program, SaysWhyTheSystemRefused) {
  const struct {
    std::string words, before, said;
    RunAs user = RunAs::kRoot;
  } cases[] = {
      {"list profiles", "rm -r /opt/vrx", "open /opt/vrx/profiles/: No such file or directory"},
      {"list profiles", "head -c 1100000 /dev/zero | tr '\\0' x >one/profile_name",
       "read /opt/vrx/profiles/one/profile_name: File too large"},
      {"profile details office", "block b/profile_name",
       "open /opt/vrx/profiles/b/profile_name: Is a directory"},
      // Nothing in a name reaches the terminal.
      {"profile rename dir=a\x1b[2J new_name=x", "block 'a\x1b[2J'/profile_name.temp",
       "unlink /opt/vrx/profiles/a?[2J/profile_name.temp: Is a directory"},
      {"profile create x helmsman=h", "rm -r .factory",
       "open /opt/vrx/profiles/.factory: No such file or directory"},
      {"profile create x helmsman=h", "touch /there; ln -s there .factory/gone",
       "stat /opt/vrx/profiles/.factory/gone: No such file or directory"},
      {"profile create x helmsman=h", "rm -r .factory/ca-certs; touch .factory/ca-certs",
       "W certificates not copied: open /opt/vrx/profiles/.factory/ca-certs: Not a directory"},
      {"profile create x helmsman=h", "rm -r .factory/ca-certs", ""},
      {"profile modify one helmsman=:1", "",
       "open /opt/vrx/profiles/one/mapconfig.static: No such file or directory"},
      {"profile modify one log_level=debug", "block one/endbox.conf",
       "open /opt/vrx/profiles/one/endbox.conf: not a regular file"},
      {"profile modify one network=eth1", "block one/hip.conf",
       "W network not changed: open /opt/vrx/profiles/one/hip.conf: not a regular file"},
      {"profile modify one invitation=x", "block one/endbox.conf.temp",
       "W invitation not changed: unlink /opt/vrx/profiles/one/endbox.conf.temp: Is a directory"},
      {"support reset one", "block one/peers",
       "W state file not removed: unlink /opt/vrx/profiles/one/peers: Is a directory"},
      {"profile delete one", "rm -r .factory",
       "W no default profile made: open /opt/vrx/profiles/.factory: No such file or directory"},
      {"profile delete one", "mkdir two; touch two/hip.conf; block .current",
       "W no current profile chosen: open /opt/vrx/profiles/.current: Is a directory"},
      {"profile activate one sys=systemd", "cp /usr/bin/true /bin/systemctl; block .current",
       "open /opt/vrx/profiles/.current: Is a directory"},
      {"service stop sys=systemd", "", "execute /bin/systemctl: No such file or directory"},
      {"service stop sys=null", "", "this host has no init system to command"},
      {"service restart sys=upstart", "failing /sbin/initctl",
       "/sbin/initctl restart hip: exit status 3"},
      {"support bundle", "failing /opt/vrx/bin/vrx-sendbundle.sh",
       "/opt/vrx/bin/vrx-sendbundle.sh: exit status 3"},
      {"list log dir=one", "touch one/hip.log; chmod 0 one/hip.log",
       "open /opt/vrx/profiles/one/hip.log: Permission denied", RunAs::kOrdinaryUser},
      // Refusals that are to be expected.
      {"profile details two", "", ""},
      {"profile rename one new_name=a\nb", "", ""},
      {"profile create one helmsman=h allow_rename=no", "", ""},
      {"profile delete .factory", "", ""},
      {"service start", "", "", RunAs::kOrdinaryUser},
  };
  for (const auto& c : cases) {
    TestHost host;
    host.factory().profile("one", "one").file("one/endbox.conf", "");
    EXPECT_EQ(host.shell(kShellFunctions + c.before), "");
    EXPECT_EQ(host.run("/usr/sbin/tunadm " + c.words, c.user).err, message(c.words, c.said))
        << c.words;
  }
}

TEST(Create, WritesAProfile) {
  TestHost host;
  host.factory();
  EXPECT_EQ(host.shell("tunadm profile create office helmsman=10.0.0.1:8096 network=eth0 "
                       "invitation=abc | tail -n 1; ls -A /tmp/lock; cd profile-123123\n"
                       "stat -c '%n %a' . * */*; grep -r '' . | sort"),
            "profile_name: office\n"
            ". 755\nca-certs 755\ndevice_id 644\nendbox.conf 644\nfirmware_revision 644\n"
            "hip.conf 644\nmapconfig.static 640\nprofile_name 640\nca-certs/root.pem 644\n"
            "./ca-certs/root.pem:certificate\n./device_id:device-1\n"
            "./endbox.conf:activation_code=abc\n./endbox.conf:device_ip=1.2.3.4\n"
            "./endbox.conf:device_mask=255.0.0.0\n./endbox.conf:log_level=info\n"
            "./firmware_revision:3.1.0\n./hip.conf:master_interface=eth0\n"
            "./mapconfig.static:map_uri=https://10.0.0.1:8096\n./profile_name:office\n");
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
  for (const std::string words : {"office helmsman=h", "profile helmsman=h", " helmsman=h",
                                  " helmsman=h new_name=lab", "office helmsman=h allow_rename=no"})
    (void)host.says("profile create " + words);
  EXPECT_EQ(host.shell("grep '' */profile_name"),
            "profile-123124/profile_name:office\nprofile-123126/profile_name:office#2\n"
            "profile-123127/profile_name:profile\nprofile-123128/profile_name:profile#2\n"
            "profile-123129/profile_name:lab\n");
  // The directory of the refused one stays, and the next listing names it.
  EXPECT_NE(host.says("list profiles").find("profile-123130: profile#3\n"), std::string::npos);
}

TEST(Create, CopiesTheFactoryProfileUpToTheFirstFailure) {
  TestHost host;
  host.factory().file(".factory/endbox.conf", "activation_code=factory\nx\n");
  host.file("/tmp/target", "linked\n", 0600).file(".factory/peer_certs/x", "y");
  host.link("/tmp/target", ".factory/absolute").link("/tmp", ".factory/directory");
  // A relative target is looked up from where the command was started.
  host.link("hip.conf", ".factory/relative").link("only_here", ".factory/only_here");
  host.file("/only_here", "");
  EXPECT_EQ(host.says("profile create office helmsman=h"),
            failure("invalid argument (/opt/vrx//profiles/.factory/only_here)", "0x10000003"));
  EXPECT_TRUE(host.exists("profile-123123/hip.conf"));
  EXPECT_FALSE(host.exists("profile-123123/profile_name"));
  host.remove(".factory/only_here").remove("/only_here");
  EXPECT_EQ(host.says("profile create a helmsman=h:65536 invitation=### activate log_level=debug"),
            failure("child process returned nonzero exit code", "0x16001001"))
      << "there is no init system";
  EXPECT_TRUE(host.says("profile create b helmsman=:1 network=")
                  .starts_with("details:\nprofile_name=b\nprofile_dir=profile-123125\n"));
  EXPECT_EQ(host.shell("stat -c '%n %a' .current; cd *4; stat -c '%n %a' *; cat ../.current *.conf "
                       "absolute mapconfig.static ../*5/mapconfig.static"),
            ".current 666\nabsolute 644\nca-certs 755\ndevice_id 644\nendbox.conf 644\n"
            "firmware_revision 644\nhip.conf 644\nmapconfig.static 640\nprofile_name 640\n"
            "profile-123124\nx\nmaster_interface=auto\nlinked\nmap_uri=https://h\nmap_uri=\n");
}

TEST(Diagnostics, LogVersionsBundleAndInterfaces) {
  TestHost host;
  host.factory().profile("a", "office").file("a/hip.log", "E~ one\nI~ two\nE~ three\n");
  host.profile("b", "long");
  const std::string last_fifty =
      host.shell("seq 80 >b/hip.log; seq 31 80") + "profile_name: long\n";
  const auto says = [&host](const std::string& words) { return host.says(words); };
  expectRows(
      {"list log office -> E~ one\nI~ two\nE~ three\nprofile_name: office\n",
       "show log dir=a max_lines=1 -> E~ three\nprofile_name: office\n",
       "list log office log_level=err -> E~ one\nE~ three\nprofile_name: office\n",
       "list log office max_lines=0 -> profile_name: office\n", "list log long -> " + last_fifty,
       "list log long max_lines=-1 -> " + last_fifty, "json {} -> subcommand:\n"},
      says);
  const std::string interfaces = host.says("show interfaces --verbose");
  EXPECT_EQ(interfaces.rfind("method: list interfaces\nstatus_text: success\n", 0), 0u);
  EXPECT_EQ(interfaces.find("\nlo\n"), std::string::npos);
  EXPECT_EQ(host.shell("seq 100002 >/opt/vrx/profiles/b/hip.log\n"
                       "tunadm list log long max_lines=200000 | sed -n '1p;$='"),
            "3\n100001\n")
      << "no more than 100,000 lines";
  host.remove(".factory/firmware_revision");
  EXPECT_EQ(host.says("list versions"), "hipapp_version: \ntunadm_version: 2.2\n");
  host.file(".factory/firmware_revision", std::string(1100000, 'x'));
  host.file("a/hip.log", "E~ secret\n", 0);
  expectRows({"list versions -> hipapp_version: 2.2\ntunadm_version: 2.2\n",
              "support bundle -> " + failure("stdlib error: system", "0x14000013")},
             says);
  host.file("/opt/vrx/bin/vrx-sendbundle.sh", "#!/bin/sh\nexit 3\n", 0755);
  EXPECT_EQ(host.says("support bundle"), kApplication);
  EXPECT_EQ(host.says("list log dir=a", RunAs::kOrdinaryUser),
            failure("stdlib error: file open", "0x14000005"));
}

#ifndef TUNADM_SANITIZED  // the sanitizers need more
TEST(Program, WithoutMemoryOrDescriptors) {
  TestHost host;
  host.profile("a", "office").file("a/hip.log", std::string(8000000, 'x') + "\n");
  EXPECT_EQ(host.shell("ulimit -v 6000; tunadm list log office max_lines=100000"),
            "E~ tunadm Program.cpp sayWhy: list log: read /opt/vrx/profiles/a/hip.log: Cannot "
            "allocate memory\n" +
                failure("stdlib error: file read", "0x14000006"));
  EXPECT_EQ(host.shell("ulimit -n 4; tunadm list interfaces output=json"),
            "E~ tunadm ConfigControl.cpp read_networks: could not getifaddrs; status = -1\n"
            "{\"method\":\"list interfaces\",\"status_code\":335544329,"
            "\"status_text\":\"stdlib error: getifaddrs\"}\n");
}
#endif

// Each line takes 64 bytes, so that a write of which only some pages are there yet ends with a
// whole line.
TEST(Log, AnswersAreOfOneContentWhileItIsCutAndWrittenAnew) {
  TestHost host;
  host.profile("a", "office").file("a/hip.log", "");
  host.file("/tmp/writer", "n=10000; while n=$((n + 1)); do\n seq -f \"I~ $n %06.0f " +
                               std::string(47, 'x') +
                               "\" 100000 120000 >/opt/vrx/profiles/a/hip.log\ndone\n");
  const std::string writer = host.shell("sh /tmp/writer >/dev/null 2>&1 & echo $!");
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
  EXPECT_EQ(host.shell("kill -s KILL " + writer), "");
}

}  // namespace
}  // namespace tunadm
