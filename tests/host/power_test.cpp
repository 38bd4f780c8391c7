// What a command has reported as done is on the disk: the store lies on a file system of its own,
// whose device is copied at once, as a power cut would leave it.
#include <sys/mount.h>
#include <sys/sysmacros.h>

#include <algorithm>

#include "fundkit/ScopedFd.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

namespace fs = std::filesystem;
using namespace std::literals;
using Lines = std::vector<std::string>;

constexpr const char* kDisk = "/disk";
constexpr const char* kCopy = "/disk-after-the-cut";
constexpr const char* kMountedCopy = "/after-the-cut";

// False where no loop device can be used.
bool mountImage(const TestHost& host, const char* image, const char* place, const char* options) {
  return host.run(std::string("/usr/bin/mount -o loop,") + options + " " + image + " " + place)
             .exit == 0;
}

// The store on a disk that writes nothing by itself.
struct PowerHost : TestHost {
  PowerHost() {
    std::ofstream(kDisk).close();
    fs::create_directories(kMountedCopy);
    (void)mknod("/dev/loop-control", S_IFCHR | 0600, makedev(10, 237));
    for (unsigned i = 0; i < 100; ++i)
      (void)mknod(("/dev/loop" + std::to_string(i)).c_str(), S_IFBLK | 0600, makedev(7, i));
    if (truncate(kDisk, 16 << 20) != 0 ||
        run(std::string("/usr/bin/mkfs.ext4 -q -F -O ^filetype ") + kDisk).exit != 0 ||
        !mountImage(*this, kDisk, "/opt/vrx", "commit=900")) {
      std::puts("skipped: no ext4 file system can be made in a loop device here");
      std::exit(77);
    }
  }
  ~PowerHost() { EXPECT_EQ(umount("/opt/vrx"), 0); }

  void fill(bool with_names_to_repair = false) {
    fs::remove_all("/opt/vrx/profiles");
    factory().file("/opt/vrx/.systemctl", "").standIn("/bin/systemctl");
    for (const std::string name : {"one", "two"}) {
      profile(name, name).file(name + "/hip.conf", "# ours\nmaster_interface=auto\n");
      file(name + "/endbox.conf", "activation_code=old\nlog_level=info\n");
      file(name + "/mapconfig.static", "map_uri=https://old:1\n", 0640);
    }
    file(".current", "one\n", 0666);
    if (with_names_to_repair) profile("unnamed").profile("twin", "two");
    EXPECT_EQ(syncfs(ScopedFd(open("/opt/vrx", O_RDONLY | O_CLOEXEC)).get()), 0);
  }

  Lines store() const { return tree("/opt/vrx/profiles"); }

  // What of the store is not as it is, if the power fails now. Files that were removed may be back.
  Lines lostByPowerCut() const {
    // The device has written to this file what it was given, and nothing else.
    fs::copy_file(kDisk, kCopy, fs::copy_options::overwrite_existing);
    EXPECT_TRUE(mountImage(*this, kCopy, kMountedCopy, "rw"));
    Lines lost;
    std::ranges::set_difference(store(), tree(kMountedCopy + "/profiles"s),
                                std::back_inserter(lost));
    EXPECT_EQ(umount(kMountedCopy), 0);
    return lost;
  }
};

TEST(Power, WhatWasReportedIsOnTheDisk) {
  PowerHost host;
  for (const std::string line :
       {"profile create office helmsman=h:1 network=eth0 invitation=abc",
        "profile create office helmsman=h activate", "profile rename one new_name=new",
        "profile modify one helmsman=h:1", "profile modify one log_level=debug",
        "profile modify one network=eth9", "profile modify one invitation=abc",
        "profile modify one new_name=new", "profile modify one network=eth9 activate",
        "profile activate dir=two", "list profiles"}) {
    host.fill(line == "list profiles");
    const Lines before = host.store();
    const std::string said = host.says(line);
    EXPECT_EQ(said.find("status_code"), said.npos) << line << ": " << said;
    EXPECT_NE(host.store(), before) << line;
    EXPECT_EQ(host.lostByPowerCut(), Lines()) << line;
  }
}

// Otherwise the test above would not show anything.
TEST(Power, WithoutFlushesItIsLost) {
  PowerHost host;
  host.fill();
  const std::string no_flush = "/usr/bin/strace -qq -o /dev/null -e inject=fsync,syncfs:retval=0 ";
  if (host.run(no_flush + "true").exit != 0) GTEST_SKIP() << "no program can be traced here";
  EXPECT_EQ(host.run(no_flush + "/usr/sbin/tunadm profile activate dir=two").exit, 0);
  EXPECT_EQ(host.lostByPowerCut(), Lines{".current 666 two|"});
}

}  // namespace
}  // namespace tunadm
