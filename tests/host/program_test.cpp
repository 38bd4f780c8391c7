// The program as its users run it. The documents that are run as a test show most of what it
// prints.

#include <algorithm>

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
