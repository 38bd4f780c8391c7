// The program among hostile local users, in odd environments and without room on the disk.
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/sysmacros.h>

#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using namespace std::string_view_literals;

// Runs tunadm in a shell that has done `before`. A run that does not end is taken for a failed one.
Outcome run(const TestHost& host, const std::string& before, const std::string& line,
            const std::string& behind = "") {
  const std::string run = "\nexec timeout 10 $E /usr/sbin/tunadm ";
  return host.runWords({"/bin/sh", "-c", before + run + line + behind});
}

std::string shell(const TestHost& host, const char* line) {
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

const struct {
  const char* name;
  bool (*set)(const char*);
} kTraps[] = {
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

// All that the host has but the program's own places; any change shows in the last number.
const char kOutside[] =
    "find / -xdev \\( -path /opt/vrx -o -path /tmp/lock \\) -prune -o "
    "-printf '%p %y %m %U %G %s %C@\\n'";

TEST(Hostile, TrapsAtPathsThatOthersWriteTo) {
  for (const std::string path :
       {"/opt/vrx/profiles/.current", "/tmp/lock", "/tmp/lock/profiles.lock"}) {
    const bool is_marker = path.ends_with(".current");
    for (const auto& [name, set] : kTraps) {
      Store host;
      host.file("/victim/hip.conf", "kept", 0600).file("/victim/hipvars.txt", "kept");
      host.file("/victim/profile_name", "victim\n").file("/victim/ca-certs/x", "kept");
      if (!is_marker) {
        std::filesystem::remove_all(path);
        // Only root makes devices and gives files away, and what root owns is believed.
        if (!set(path.c_str()) || lchown(path.c_str(), 1000, 1000) != 0) continue;
      }
      const std::string before = shell(host, kOutside);
      for (const std::string& line : kCommands) {
        if (is_marker) {
          std::filesystem::remove_all(path);
          host.fill();
          std::filesystem::remove(path);
          if (!set(path.c_str())) break;
        }
        SCOPED_TRACE(testing::Message() << path << ", " << name << ", " << line);
        const Outcome outcome = run(host, "", line);
        EXPECT_EQ(outcome.exit, 0);
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
      EXPECT_EQ(shell(host, kOutside), before) << path << ", " << name;
    }
  }
}

// The files of the store with their lines, and what everybody could write to.
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
    out += shell(host, kStore);
    if (expected.empty()) expected = out;
    // What is printed is lost where the output is closed.
    const std::size_t length =
        preparation.find(" >&-") != preparation.npos ? out.size() : expected.size();
    EXPECT_EQ(out, expected.substr(expected.size() - length)) << preparation;
  }
}

// What the service would inherit: no signal blocked or ignored, and the caller's umask. A start
// after a change does not depend on the caller's signals or descriptors either.
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

// Neither the program's owner nor the caller's environment is a way to privileges.
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

TEST(Hostile, TheLockIsWhereTheEnvironmentSays) {
  for (const std::string directory : {"/tmp/lock", "/run/tunadm"}) {
    Store host;
    host.remove("/tmp/lock");
    const std::string set = directory == "/tmp/lock" ? "" : "export VRX_LOCK_DIR=" + directory;
    EXPECT_EQ(run(host, set, "profile rename two new_name=x").out, "profile_name: x\n");
    EXPECT_EQ(host.mode(directory), 0750u);
    EXPECT_EQ(host.exists("/tmp/lock"), directory == "/tmp/lock");
    const int file = open((directory + "/profiles.lock").c_str(), O_RDWR | O_CREAT, 0666);
    EXPECT_EQ(flock(file, LOCK_EX), 0);
    const std::string in_time = set + "\nE='timeout 0.2'";
    EXPECT_EQ(run(host, in_time, "profile rename x new_name=y").exit, 124) << directory;
    EXPECT_EQ(close(file), 0);
    EXPECT_EQ(run(host, set, "profile rename x new_name=y").out, "profile_name: y\n");
  }
}

// The hexadecimal digits of a failure's code, none of a success.
std::string codeIn(const std::string& out) {
  const std::size_t begin = out.find("status_code: 0x");
  return begin == out.npos ? "" : out.substr(begin + 15, 8);
}

TEST(Hostile, FullDisks) {
  const char* const kFillers[] = {"head -c 400000 /dev/zero >/opt/vrx/filler",
                                  "while : >/opt/vrx/filler$i; do i=${i}x; done"};
  const struct {
    const char* line;
    const char* codes[4];  // no room, no inodes, read-only, no file size; empty: success
  } cases[] = {
      {"profile create new helmsman=h", {"14000007", "12000001", "12000001", "14000007"}},
      {"profile modify two helmsman=h log_level=debug", {"", "", "12000001", "14000007"}},
      {"profile modify two network=eth9 new_name=x", {"", "", "14000005", "14000007"}},
      {"profile rename two new_name=x", {"", "", "14000005", "14000007"}},
      {"profile activate two", {"", "", "12000001", "12000001"}},
      {"profile delete one", {"", "", "12000001", ""}},
      {"support reset two", {"", "", "", ""}},
  };
  for (const auto& c : cases) {
    std::map<std::string, std::string> healthy;
    for (int trouble = -1; trouble < 5; ++trouble) {  // none, those of the codes, no lock to be had
      SCOPED_TRACE(std::string(c.line) + ", trouble " + std::to_string(trouble));
      Store host;
      EXPECT_EQ(mount("none", "/opt/vrx", "tmpfs", 0, "size=256k,nr_inodes=100"), 0);
      const auto before = host.fill().files();
      if (trouble == 0 || trouble == 1) shell(host, kFillers[trouble]);
      const auto read_only = [&](int when) { return trouble == when ? 1UL * MS_RDONLY : 0UL; };
      EXPECT_EQ(mount("", "/opt/vrx", "", MS_REMOUNT | read_only(2), ""), 0);
      EXPECT_EQ(mount("", "/tmp/lock", "tmpfs", read_only(4), ""), 0);
      // The limit holds for output to a file, too.
      const Outcome outcome =
          trouble == 3 ? run(host, "(ulimit -f 0", c.line, ") | cat") : run(host, "", c.line);
      EXPECT_EQ(outcome.exit, 0);
      const std::string code = trouble < 0 || trouble == 4 ? "" : c.codes[trouble];
      EXPECT_EQ(codeIn(outcome.out), code) << outcome.out;
      auto after = host.files();
      if (trouble < 0) healthy = after;
      for (const auto& [path, text] : before)
        EXPECT_EQ(after[path], after[path] == text ? text : healthy[path]) << path;
      EXPECT_EQ(host.runWords({"/usr/bin/find", "/opt", "-name", "*.temp"}).out, "");
      EXPECT_EQ(umount("/tmp/lock"), 0);
      EXPECT_EQ(umount("/opt/vrx"), 0);
    }
  }
}

}  // namespace
}  // namespace tunadm
