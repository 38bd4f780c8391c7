// The program among hostile local users, in odd environments and without room on the disk.
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/sysmacros.h>

#include "fundkit/ScopedFd.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using namespace std::literals;

// Runs tunadm in a shell that has done `before`. A run that does not end counts as failed.
Outcome run(const TestHost& host, const std::string& before, const std::string& line,
            const std::string& after = "") {
  const std::string run = "\nexec timeout 10 $E /usr/sbin/tunadm ";
  return host.runWords({"/bin/sh", "-c", before + run + line + after});
}

std::string outputOf(const TestHost& host, const char* line) {
  return host.runWords({"/bin/sh", "-c", line}).out;
}

struct Store : TestHost {
  Store() { fill(), std::filesystem::copy_file("/usr/bin/true", "/bin/systemctl"); }
  TestHost& fill() {
    factory();
    for (const char* name : {"one", "two"}) {
      profile(name, name).file(std::string(name) + "/hip.log", "E~ x\n");
      file(std::string(name) + "/endbox.conf", "# mine\nlog_level=info\n");
      file(std::string(name) + "/mapconfig.static", "map_uri=https://old:1\n");
    }
    return file(".current", "one\n", 0666)
        .file("/tmp/lock/kept", "")
        .file("/opt/vrx/.systemctl", "");
  }
};

bool put(const char* path, std::string_view content, off_t size = 0) {
  std::ofstream(path, std::ios::binary) << content;
  return size == 0 || truncate(path, size) == 0;
}

const std::pair<const char*, bool (*)(const char*)> kTraps[] = {
    {"link to a file", [](const char* p) { return symlink("/victim/hip.conf", p) == 0; }},
    {"link to a directory", [](const char* p) { return symlink("/victim", p) == 0; }},
    {"FIFO", [](const char* p) { return mkfifo(p, 0666) == 0; }},
    {"directory", [](const char* p) { return mkdir(p, 0777) == 0; }},
    {"device", [](const char* p) { return mknod(p, S_IFCHR | 0666, makedev(1, 7)) == 0; }},
    {"relative path", [](const char* p) { return put(p, "../../../victim\n"); }},
    {"NUL bytes", [](const char* p) { return put(p, "one\0/../../../victim\n"sv); }},
    {"huge hole", [](const char* p) { return put(p, "", off_t{1} << 30); }},
    {"huge name", [](const char* p) { return put(p, std::string(4 << 20, 'x')); }},
};

const std::string kCommands[] = {"profile create new helmsman=h activate",
                                 "profile activate two",
                                 "profile activate .current",
                                 "profile modify .current network=eth9 log_level=debug",
                                 "profile rename --active new_name=x",
                                 "profile delete --active",
                                 "support reset .current",
                                 "list log .current",
                                 "list profiles",
                                 "service restart"};

// Everything on the host outside the program's own places; any change shows in the last number.
const char kOutside[] =
    "find / -xdev \\( -path /opt/vrx -o -path /tmp/lock \\) -prune -o "
    "-printf '%p %y %m %U %G %s %C@\\n'";

TEST(Hostile, TrapsAtPathsThatOthersWriteTo) {
  const std::string marker = "/opt/vrx/profiles/.current";
  for (const std::string& path : {marker, "/tmp/lock"s, "/tmp/lock/profiles.lock"s}) {
    for (const auto& [name, set] : kTraps) {
      Store host;
      host.file("/victim/hip.conf", "kept", 0600).file("/victim/hipvars.txt", "kept");
      host.file("/victim/profile_name", "victim\n").file("/victim/ca-certs/x", "kept");
      for (const std::string& line : kCommands) {
        SCOPED_TRACE(testing::Message() << path << ", " << name << ", " << line);
        std::filesystem::remove_all(path);
        host.fill();
        std::filesystem::remove_all(path);
        // Only root can make devices and give files away, and what root owns is trusted.
        if (!set(path.c_str()) || (path != marker && lchown(path.c_str(), 1000, 1000) != 0)) break;
        const std::string before = outputOf(host, kOutside);
        const Outcome outcome = run(host, "", line);
        EXPECT_EQ(outcome.exit, 0);
        EXPECT_EQ(outputOf(host, kOutside), before);
        if (path == "/tmp/lock" && line == kCommands[0]) {
          EXPECT_EQ(
              outcome.err,
              "W~ tunadm ProfileLock.cpp ProfileLock: the lock directory is not to be trusted; "
              "locking a file in /opt/vrx instead\n");
        }
        if (line == kCommands[1] && name != "directory"sv) {
          EXPECT_EQ(host.read(".current"), "two\n");
        }
      }
    }
  }
}

// The files of the store with their lines, and what every user could write to.
const char kStore[] =
    "cd /opt/vrx; { find . -printf '%p %y\\n'; find . -perm /022 ! -name .current; grep -r '' .; } "
    "| sort";

const char kHugeEnvironment[] =
    "i=0; while [ $i -lt 16 ]; do export V$i=$(head -c 65536 /dev/zero | tr '\\0' x) i=$((i+1)); "
    "done";

TEST(Hostile, EnvironmentMakesNoDifference) {
  std::vector<std::string> preparations = {
      ":",
      "umask 0777",
      "umask 0000",
      "ulimit -s 128",
      "exec 3>&- 4>&-; ulimit -n 8",
      "E='env -i'",
      "E='env --ignore-signal=CHLD'",  // timeout takes back what a trap says of it
      kHugeEnvironment,
      "mkdir /tmp/gone && cd /tmp/gone && rmdir /tmp/gone",
      "trap '' HUP INT QUIT PIPE ALRM TERM USR1 XFSZ XCPU"};
  for (const char* closed :
       {"<&-", ">&-", "2>&-", "<&- >&-", "<&- 2>&-", ">&- 2>&-", "<&- >&- 2>&-"})
    preparations.push_back(std::string("exec ") + closed);
  std::string expected;
  for (const std::string& preparation : preparations) {
    Store host;
    std::string out;
    for (const char* line :
         {"profile create new helmsman=h activate",
          "profile modify two network=eth9 log_level=debug invitation=x",
          "profile rename two new_name=x", "profile activate x", "list profiles", "list log x",
          "support reset x", "profile delete one", "service status", "reference"}) {
      const Outcome outcome = run(host, preparation, line);
      EXPECT_EQ(outcome.exit, 0) << preparation << ": " << line;
      out += outcome.out;
    }
    out += outputOf(host, kStore);
    if (expected.empty()) expected = out;
    // What is printed is lost if the output is closed.
    const std::size_t length =
        preparation.find(" >&-") != preparation.npos ? out.size() : expected.size();
    EXPECT_EQ(out, expected.substr(expected.size() - length)) << preparation;
  }
}

// What the service inherits: no signal blocked or ignored, and the caller's umask. A start after a
// change does not depend on the caller's signals or descriptors either.
TEST(Hostile, NothingOfTheProgramReachesTheService) {
  for (const std::string line : {"service start", "service restart", "profile activate two"}) {
    Store host;
    std::filesystem::remove("/bin/systemctl");
    host.file("/bin/systemctl",
              "#!/bin/sh\n[ $1 = stop ] || { umask; grep -E 'Sig(Blk|Ign)' /proc/self/status; "
              "ls /proc/self/fd; } >/tmp/inherited\n",
              0755);
    const bool change = line.starts_with("profile");
    const std::string caller =
        "trap '' HUP INT QUIT PIPE ALRM TERM TSTP USR1; exec 5</dev/null 9>/tmp/x";
    EXPECT_EQ(run(host, "umask 027; " + (change ? caller : ""), line).exit, 0) << line;
    const std::string inherited = host.read("/tmp/inherited");
    const std::string status = "0027\nSigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n0\n1\n";
    EXPECT_EQ(inherited.substr(0, status.size()), status) << line;
    EXPECT_TRUE(!change || inherited == status + "2\n3\n") << inherited;  // 3 is what ls reads
  }
}

// Neither the program's owner nor the caller's environment grants privileges.
TEST(Hostile, ASetUserIdProgramRefuses) {
  Store host;
  EXPECT_EQ(chmod("/usr/sbin/tunadm", 04755), 0);
  const std::string line = "/usr/bin/env VRX_LOCK_DIR=/opt/vrx/theirs /usr/sbin/tunadm ";
  for (const char* words : {"profile delete two", "service stop"}) {
    EXPECT_EQ(host.run(line + words, RunAs::kOrdinaryUser).out,
              failure("authentication error (tunadm requires sudo for this command)", "0x12000002"))
        << words;
  }
  (void)host.run(line + "profile activate dir=two", RunAs::kOrdinaryUser);  // it may try
  EXPECT_FALSE(host.exists("/opt/vrx/theirs"));
  EXPECT_EQ(chmod("/usr/sbin/tunadm", 0755), 0);
}

// What stands before and after a command line in the shell.
const std::string kTroubles[][2] = {
    {"mount -t tmpfs -o ro none /tmp/lock || exit"},  // no lock there
    {"head -c 400000 /dev/zero >/opt/vrx/filler"},
    {"(while : >/opt/vrx/filler$i; do i=${i}x; done)"},
    {"mount -o remount,ro /opt/vrx || exit"},
    {"(ulimit -f 0", ") 2>&1 | cat"}};  // the limit holds for output to a file, too

TEST(Hostile, FullDisks) {
  // Whether the command succeeds in each trouble.
  const std::pair<const char*, std::string> cases[] = {
      {"profile create new helmsman=h", "ynnnn"},
      {"profile modify two helmsman=h log_level=debug", "yyynn"},
      {"profile modify two network=eth9 new_name=x", "yyynn"},
      {"profile rename two new_name=x", "yyynn"},
      {"profile activate two", "yyynn"},
      {"profile delete one", "yyyny"},
      {"support reset two", "yyyyy"},
  };
  for (const auto& [line, succeeds] : cases) {
    std::map<std::string, std::string> healthy;
    for (std::size_t trouble = 0; trouble < std::size(kTroubles); ++trouble) {
      SCOPED_TRACE(line + ", "s + kTroubles[trouble][0]);
      Store host;
      EXPECT_EQ(mount("none", "/opt/vrx", "tmpfs", 0, "size=256k,nr_inodes=100"), 0);
      const auto before = host.fill().files();
      const Outcome outcome = run(host, kTroubles[trouble][0], line, kTroubles[trouble][1]);
      EXPECT_EQ(outcome.exit, 0);
      const std::string said = outcome.out + outcome.err;
      const bool failed = said.find("status_code") != said.npos;
      EXPECT_EQ(failed ? 'n' : 'y', succeeds[trouble]);
      auto after = host.files();
      if (trouble == 0) healthy = after;
      // A success that left something undone has warned.
      const bool all_done = !failed && said.find("W~ ") == said.npos;
      EXPECT_TRUE(!all_done || after == healthy);
      auto done = healthy;
      for (const auto& [path, text] : before)
        EXPECT_EQ(after[path], after[path] == text ? text : done[path]) << path;
      EXPECT_EQ(outputOf(host, "find /opt -name '*.temp'"), "");
      EXPECT_EQ(umount("/opt/vrx"), 0);
      EXPECT_EQ(umount("/tmp/lock"), trouble == 0 ? 0 : -1);
    }
  }
}

}  // namespace
}  // namespace tunadm
