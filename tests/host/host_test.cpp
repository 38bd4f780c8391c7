// Holds the throw-away host and its helper to what every other test of the program relies on.
#include <errno.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

TEST(Host, MachineIsOutOfReach) {
  TestHost host;
  EXPECT_EQ(access("/usr/lib", W_OK), -1);
  EXPECT_EQ(errno, EROFS);
  EXPECT_EQ(chmod("/dev/null", 0666), -1)
      << "the mode that it has: harmless if it is the machine's";
  EXPECT_TRUE(host.exists("/proc/1/root/.throwaway-host")) << "a process of the machine is seen";
  for (const char* path : {"/boot", "/etc/hostname", "/usr/bin/apt-get", "/var/lib", "/dev/pts"}) {
    EXPECT_FALSE(host.exists(path)) << path;
  }
}

TEST(Host, NextTestFindsItEmpty) {
  {
    TestHost host;
    host.profile("a").file("/bin/systemctl", "", 0755).file("/tmp/lock/x", "");
    setenv("VRX_TMP_DIR", "/tmp/other", 1);
  }
  TestHost host;
  for (const char* path : {"a", "/bin/systemctl", "/tmp/lock"}) {
    EXPECT_FALSE(host.exists(path)) << path;
  }
  EXPECT_TRUE(host.exists("/opt/vrx/profiles"));
  EXPECT_EQ(getenv("VRX_TMP_DIR"), nullptr);
}

TEST(Host, FilesHaveTheirContentAndMode) {
  TestHost host;
  host.factory().profile("a").named("office").file("a/device_id", "x", 0600);
  EXPECT_EQ(host.read("/opt/vrx//profiles/a/profile_name"), "office\n");
  EXPECT_EQ(host.mode("a/device_id"), 0600U);
  EXPECT_TRUE(host.exists(".factory/ca-certs/root.pem"));
  EXPECT_EQ(host.read("a/missing"), "");
}

TEST(Host, OutcomeTellsHowAProgramEnded) {
  TestHost host;
  Outcome exited = host.runProgram({"/bin/sh", "-c", "echo \"$A\"; echo no >&2; exit 3"},
                                   RunAs::kRoot, {"A=yes"});
  EXPECT_EQ(exited.exit, 3);
  EXPECT_EQ(exited.signal, 0);
  EXPECT_EQ(exited.out, "yes\n");
  EXPECT_EQ(exited.err, "no\n");
  EXPECT_EQ(getenv("A"), nullptr);
  Outcome killed = host.runProgram({"/bin/sh", "-c", "kill -TERM $$"});
  EXPECT_EQ(killed.exit, -1);
  EXPECT_EQ(killed.signal, 15);
  EXPECT_EQ(host.runProgram({"/bin/sh", "-c", "head -c 300000 /dev/zero"}).out.size(), 300000U);
}

TEST(Host, OrdinaryUserIsNotRoot) {
  TestHost host;
  host.file("/tmp/closed", "secret", 0);
  const std::vector<std::string> words = {"/bin/sh", "-c", "id -u; id -ru; cat /tmp/closed"};
  EXPECT_EQ(host.runProgram(words).out, "0\n0\nsecret");
  Outcome ordinary = host.runProgram(words, RunAs::kOrdinaryUser);
  EXPECT_NE(ordinary.exit, 0);
  EXPECT_NE(ordinary.out.substr(0, 2), "0\n");
  EXPECT_EQ(ordinary.out.find("\n0\n"), std::string::npos);
  EXPECT_EQ(ordinary.out.find("secret"), std::string::npos);
}

}  // namespace
}  // namespace tunadm
