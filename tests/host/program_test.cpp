// The program as its users run it. The documents that are run as a test show most of what it
// prints.

#include <algorithm>

#include "tests/support/Rows.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

// What all the other tests of the program rely on.
TEST(Host, MachineIsOutOfReach) {
  TestHost host;
  EXPECT_EQ(access("/usr/lib", W_OK), -1);
  EXPECT_EQ(errno, EROFS);
  EXPECT_TRUE(host.exists("/proc/1/root/.throwaway-host")) << "a process of the machine is seen";
  for (const char* path : {"/boot", "/etc/hostname", "/var/lib"})
    EXPECT_FALSE(host.exists(path)) << path;
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

TEST(Diagnostics, InterfacesAndAnUnreadableLog) {
  TestHost host;
  host.profile("a", "office").file("a/hip.log", "E~ secret\n", 0);
  const std::string interfaces = host.says("show interfaces --verbose");
  EXPECT_TRUE(interfaces.starts_with("method: list interfaces\nstatus_text: success\n"));
  EXPECT_EQ(interfaces.find("\nlo\n"), std::string::npos);
  const Outcome log = host.run("/usr/sbin/tunadm list log dir=a", RunAs::kOrdinaryUser);
  EXPECT_EQ(log.out, failure("stdlib error: file open", "0x14000005"));
  EXPECT_EQ(log.err,
            "E~ tunadm Program.cpp sayWhy: list log: open /opt/vrx/profiles/a/hip.log: "
            "Permission denied\n");
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
