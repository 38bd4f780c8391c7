// Many processes at once on one store, some of which are killed.

#include <sys/file.h>

#include <chrono>
#include <future>
#include <set>

#include "fundkit/ScopedFd.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

// Each worker changes a profile of its own, which must be as the worker left it, and ones that all
// change. Commands on those are also killed while they hold the lock, but none that runs the init
// system, which would go on after the lock is gone.
const char kWorkers[] = R"sh(
goes_on() { [ $(date +%s) -lt $end ]; }
must() { tunadm "$@" 2>/dev/null | grep -A1 status_text && echo "$*"; }
work() {
  own=$1 name=$1. round=0
  must profile create $name helmsman=h
  until [ $round -gt 0 ] && ! goes_on; do
    round=$((round + 1))
    must profile rename $name new_name=$own.$round
    name=$own.$round
    must profile modify $name network=eth$round
    for shared in 'create office helmsman=h activate' 'rename office new_name=lab' \
      'delete office#2' 'delete lab'; do
      tunadm profile $shared >/dev/null 2>&1 # another may have been there first
    done
    tunadm list profiles 2>/dev/null | grep -q ": $name\$" || echo "not listed: $name"
    must profile activate $name sys=systemd
    tunadm profile details $name 2>/dev/null | grep -qx network=eth$round || echo "not changed: $name"
  done
  must profile rename $name new_name=$own
}
kill_some() {
  while goes_on; do
    for shared in 'create office helmsman=k' 'delete office' 'rename lab new_name=office' \
      'modify lab network=eth9'; do
      random=$(od -An -N2 -tu2 /dev/urandom)
      timeout -s KILL 0.00$((1000 + random % 9000)) tunadm profile $shared >/dev/null 2>&1
      [ $? != 137 ] || : >/tmp/killed
    done
  done
}
end=$(($(date +%s) + 5))
for own in $(seq -f own%.0f 56); do work $own & done
for killer in $(seq 8); do kill_some & done
wait
)sh";

TEST(Concurrency, NothingIsLostOrNamedTwice) {
  TestHost host;
  host.factory().file("/opt/vrx/.systemctl", "").file("/tmp/lock/kept", "");
  // A stop is made while the lock is held: two at once show that two hold it.
  host.file("/bin/systemctl",
            "#!/bin/sh\n[ $1 = stop ] || exit 0\n"
            "mkdir /tmp/held || : >/tmp/held-twice\nrmdir /tmp/held\n",
            0755);
  EXPECT_EQ(host.shell(kWorkers), "");
  EXPECT_TRUE(host.exists("/tmp/killed"));
  EXPECT_FALSE(host.exists("/tmp/held-twice"));
  std::istringstream listed(host.says("list profiles"));
  std::set<std::string> names;
  for (std::string line; std::getline(listed, line) && !line.starts_with("current_dir");) {
    const std::string name = line.substr(line.find(": ") + 2);
    EXPECT_TRUE(names.insert(name).second) << "twice: " << name;
    EXPECT_EQ(host.read(line.substr(0, line.find(':')) + "/profile_name"), name + "\n");
  }
  for (int number = 1; number <= 56; ++number)
    EXPECT_TRUE(names.contains("own" + std::to_string(number))) << number;
}

// A listing that saw a profile without a name reads it again under the lock before it repairs it.
// The environment says where the lock is.
TEST(Concurrency, ANameGivenMeanwhileIsKept) {
  TestHost host;
  host.profile("new").file("/run/tunadm/profiles.lock", "");
  ScopedFd lock(open("/run/tunadm/profiles.lock", O_RDWR | O_CLOEXEC));
  EXPECT_EQ(flock(lock.get(), LOCK_EX), 0);
  auto listed = std::async(std::launch::async, [&host] {
    return host.shell("VRX_LOCK_DIR=/run/tunadm timeout 20 tunadm list profiles 2>/dev/null");
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
