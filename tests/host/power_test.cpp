// What a command has reported as done is on the disk: the store lies on a file system of its own,
// whose device is copied at once, as a power cut would leave it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "fundkit/ScopedFd.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDisk = "/disk";
constexpr const char* kCopy = "/disk-after-the-cut";
constexpr const char* kMountedCopy = "/after-the-cut";

[[noreturn]] void skip(const std::string& what) {
  std::printf("skipped, %s: %s\n", what.c_str(), std::strerror(errno));
  std::exit(77);
}

bool makeDevice(const std::string& path, mode_t type, unsigned major, unsigned minor) {
  return mknod(path.c_str(), type | 0600, makedev(major, minor)) == 0 || errno == EEXIST;
}

// A free loop device to which the file has been attached, until its last user lets go of it. Empty
// on failure; errno tells why.
std::string attachLoopDevice(const char* image, ScopedFd* device) {
  if (!makeDevice("/dev/loop-control", S_IFCHR, 10, 237)) return "";
  const ScopedFd control(open("/dev/loop-control", O_RDWR | O_CLOEXEC));
  const ScopedFd file(open(image, O_RDWR | O_CLOEXEC));
  loop_config config = {};
  config.fd = static_cast<unsigned>(file.get());
  config.info.lo_flags = LO_FLAGS_AUTOCLEAR;
  do {  // until no other process is quicker
    const int number = ioctl(control.get(), LOOP_CTL_GET_FREE);
    std::string path = "/dev/loop" + std::to_string(number);
    if (number < 0 || !makeDevice(path, S_IFBLK, 7, static_cast<unsigned>(number))) return "";
    *device = ScopedFd(open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (ioctl(device->get(), LOOP_CONFIGURE, &config) == 0) return path;
  } while (errno == EBUSY);
  return "";
}

// Mounts the file system in a file. False on failure; errno tells why.
bool mountImage(const char* image, const char* place, unsigned long flags, const char* options) {
  ScopedFd device;  // held until the mount holds it
  const std::string path = attachLoopDevice(image, &device);
  return !path.empty() && mount(path.c_str(), place, "ext4", flags, options) == 0;
}

// Type, mode and content of each entry, by its path below `root`.
std::map<std::string, std::string> entries(const std::string& root) {
  std::map<std::string, std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    struct stat status = {};
    EXPECT_EQ(lstat(entry.path().c_str(), &status), 0);
    std::string& text = found[entry.path().string().substr(root.size())];
    text = std::to_string(status.st_mode) + "\n";
    std::ifstream stream(entry.path(), std::ios::binary);
    if (entry.is_regular_file()) text.append(std::istreambuf_iterator<char>(stream), {});
  }
  return found;
}

// The store on a disk that writes nothing by itself.
struct PowerHost : TestHost {
  PowerHost() {
    std::ofstream(kDisk).close();
    fs::create_directories(kMountedCopy);
    if (truncate(kDisk, 16 << 20) != 0 ||
        run("/usr/bin/mkfs.ext4 -q -F " + (kDisk + std::string())).exit != 0)
      skip("no ext4 file system can be made here (package e2fsprogs)");
    if (!mountImage(kDisk, "/opt/vrx", 0, "commit=900")) skip("no loop device can be mounted here");
  }
  ~PowerHost() { EXPECT_EQ(umount("/opt/vrx"), 0) << std::strerror(errno); }

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

  // What of the store is not as it is, if the power fails now. Files that were removed may be back.
  std::string lostByPowerCut() const {
    std::string lost;
    const auto now = entries("/opt/vrx/profiles");
    // The device has written to this file what it was given, and nothing else.
    fs::copy_file(kDisk, kCopy, fs::copy_options::overwrite_existing);
    EXPECT_TRUE(mountImage(kCopy, kMountedCopy, MS_RDONLY, "")) << std::strerror(errno);
    auto then = entries(kMountedCopy + std::string("/profiles"));
    EXPECT_EQ(umount(kMountedCopy), 0);
    for (const auto& [path, text] : now) {
      if (then[path] == text) continue;
      lost.append(path).append(": ").append(then[path]).append("instead of ").append(text);
    }
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
    const auto before = entries("/opt/vrx/profiles");
    const std::string said = host.says(line);
    EXPECT_EQ(said.find("status_code"), said.npos) << line << ": " << said;
    EXPECT_NE(entries("/opt/vrx/profiles"), before) << line;
    EXPECT_EQ(host.lostByPowerCut(), "") << line;
  }
}

// Otherwise the test above would not show anything.
TEST(Power, WithoutFlushesItIsLost) {
  PowerHost host;
  host.fill();
  const std::string no_flush = "/usr/bin/strace -qq -o /dev/null -e inject=fsync,syncfs:retval=0 ";
  if (host.run(no_flush + "true").exit != 0) GTEST_SKIP() << "no program can be traced here";
  EXPECT_EQ(host.run(no_flush + "/usr/sbin/tunadm profile activate dir=two").exit, 0);
  EXPECT_NE(host.lostByPowerCut().find("/.current"), std::string::npos);
}

}  // namespace
}  // namespace tunadm
