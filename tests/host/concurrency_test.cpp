// Many processes at once on one store, some of which are killed.

#include <sys/file.h>

#include <chrono>
#include <future>
#include <random>
#include <set>

#include "fundkit/ScopedFd.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

constexpr int kWorkers = 64;
constexpr int kKillers = 8;
constexpr int kSeconds = 5;

// Changes a profile of its own, which must be as it left it, and ones that all workers change.
void work(const TestHost& host, const std::string& own, time_t deadline) {
  std::string name = own;
  const auto done = [&](const std::string& verb, const std::string& more) {
    std::string out = host.says("profile " + verb + " " + name + " " + more);
    EXPECT_EQ(out.find("status_code"), out.npos) << verb << " " << name << ":\n" << out;
    return out;
  };
  (void)done("create", "helmsman=h");
  for (int round = 1; round == 1 || time(nullptr) < deadline; ++round) {
    const std::string next = own + std::to_string(round);
    const std::string network = "network=eth" + std::to_string(round);
    EXPECT_EQ(done("rename", "new_name=" + next), "profile_name: " + next + "\n");
    name = next;
    (void)done("modify", network);
    for (const char* shared :
         {"profile create office helmsman=h activate", "profile rename office new_name=lab",
          "profile delete office#2", "profile delete lab"}) {
      (void)host.says(shared);  // another may have been there first
    }
    EXPECT_NE(host.says("list profiles").find(": " + name + "\n"), std::string::npos) << name;
    (void)done("activate", "sys=systemd");
    EXPECT_NE(done("details", "").find(network + "\n"), std::string::npos) << name;
  }
  (void)done("rename", "new_name=" + own);
}

// Kills commands on the shared profiles, also while they hold the lock, but none that runs the init
// system, which would go on after the lock is gone.
void killSome(const TestHost& host, unsigned seed, time_t deadline) {
  const std::string lines[] = {"create office helmsman=k", "delete office",
                               "rename lab new_name=office", "modify lab network=eth9"};
  std::mt19937 random(seed);
  while (time(nullptr) < deadline) {
    const std::string kill = "timeout -s KILL 0.00" + std::to_string(1000 + random() % 9000);
    (void)host.run("/usr/bin/" + kill + " /usr/sbin/tunadm profile " + lines[random() % 4]);
  }
}

TEST(Concurrency, NothingIsLostOrNamedTwice) {
  TestHost host;
  host.factory().file("/opt/vrx/.systemctl", "").file("/tmp/lock/kept", "");
  // A stop is made while the lock is held: two at once show that two hold it.
  host.file("/bin/systemctl",
            "#!/bin/sh\n[ $1 = stop ] || exit 0\n"
            "mkdir /tmp/held || : >/tmp/held-twice\nrmdir /tmp/held\n",
            0755);
  const time_t deadline = time(nullptr) + kSeconds;
  std::vector<pid_t> workers;
  for (int number = 0; number < kWorkers; ++number) {
    workers.push_back(fork());
    if (workers.back() != 0) continue;
    alarm(kSeconds + 30);  // ends a worker that waits for the lock for ever
    if (number < kKillers) {
      killSome(host, static_cast<unsigned>(number), deadline);
    } else {
      work(host, "own" + std::to_string(number) + ".", deadline);
    }
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  for (const pid_t worker : workers) {
    int status = -1;
    EXPECT_EQ(waitpid(worker, &status, 0), worker);
    EXPECT_EQ(status, 0);
  }
  EXPECT_FALSE(host.exists("/tmp/held-twice"));
  std::istringstream listed(host.says("list profiles"));
  std::set<std::string> names;
  for (std::string line; std::getline(listed, line) && !line.starts_with("current_dir");) {
    const std::string name = line.substr(line.find(": ") + 2);
    EXPECT_TRUE(names.insert(name).second) << "twice: " << name;
    EXPECT_EQ(host.read(line.substr(0, line.find(':')) + "/profile_name"), name + "\n");
  }
  for (int number = kKillers; number < kWorkers; ++number)
    EXPECT_TRUE(names.contains("own" + std::to_string(number) + ".")) << number;
}

// A listing that saw a profile without a name reads it again under the lock before it repairs it.
TEST(Concurrency, ANameGivenMeanwhileIsKept) {
  TestHost host;
  host.profile("new").file("/tmp/lock/profiles.lock", "");
  ScopedFd lock(open("/tmp/lock/profiles.lock", O_RDWR | O_CLOEXEC));
  EXPECT_EQ(flock(lock.get(), LOCK_EX), 0);
  auto listed = std::async(std::launch::async, [&host] {
    return host.run("/usr/bin/timeout 20 /usr/sbin/tunadm list profiles").out;
  });
  while (host.read("/proc/locks").find("->") == std::string::npos &&
         listed.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
  }
  host.file("new/profile_name", "given\n");
  EXPECT_EQ(lock.close(), 0);
  EXPECT_TRUE(listed.get().starts_with("new: given\n"));
  EXPECT_EQ(host.read("new/profile_name"), "given\n");
}

}  // namespace
}  // namespace tunadm
