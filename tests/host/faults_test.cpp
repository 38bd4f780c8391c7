// Every system call of every command fails once, and the program is killed before every change that
// it makes: each command runs under strace, which shows the calls and then spoils one at a time.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using Files = std::map<std::string, std::string>;

struct Row {
  const char* line;
  const char* store = "";
  const char* again = "none";          // how the command may fail if it is repeated after a kill
  const char* unheard = "/ca-certs/";  // part of the paths whose failed change it does not report
};
constexpr Row kRows[] = {
    {"profile create office helmsman=h:1 network=eth0 invitation=abc"},
    {"profile create office helmsman=h:1 activate", "running"},
    {"list profiles", "names to repair", "none", "/profile_name"},
    {"list versions"},
    {"list interfaces"},
    {"list log one"},
    {"profile details one"},
    {"profile rename dir=one new_name=new", "", "0x10000003"},
    {"profile modify dir=one helmsman=h:1 log_level=debug network=eth1 new_name=new", "",
     "0x10000003", "/one/hip.conf"},
    {"profile modify one invitation=abc activate", "running", "none", "/one/endbox.conf"},
    {"profile modify one invitation=###", "", "none", "/one/endbox.conf"},
    {"profile activate two", "running"},
    {"profile delete dir=two", "", "0x12001001"},
    {"profile delete dir=two", "no other", "0x12001001", "/profile-123123/"},
    {"support reset two", "", "none", "/two/peers"},
    {"support bundle"},
    {"service start"},
    {"service stop"},
    {"service restart"},
    {"service status", "running"},
};

// What every run of a row begins with.
struct FaultHost : TestHost {
  explicit FaultHost(const std::string& store) {
    factory().file(".factory/hip.conf", "# first\nmaster_interface=auto\n");
    link("/opt/vrx/.systemctl", ".factory/link");
    file("/opt/vrx/.systemctl", "plain\n").standIn("/bin/systemctl");
    file("/opt/vrx/bin/vrx-sendbundle.sh", "#!/bin/sh\nexit 0\n", 0755);
    profile("two", store == "names to repair" ? "one" : "two");
    file("two/peer_certs/peer", "x\n").file("two/peers", "x\n");
    file(".current", store == "no other" ? "two\n" : "one\n", 0666);
    if (store == "no other") return;
    profile("one", "one").file("one/hip.conf", "# ours\nmaster_interface=auto\n", 0600);
    file("one/endbox.conf", "activation_code=old\ndevice_ip=1.2.3.4\nlog_level=info\n");
    file("one/mapconfig.static", "map_uri=https://g:2\n").file("one/hip.log", "I a\nE b\n");
    if (store == "names to repair") profile("three");
    // No update of the daemon's can be newer, so it runs for ever.
    if (store == "running") file("one/hipvars.txt", "uptime.now=99999999999\nuptime.started=1");
  }
};

struct Call {
  std::string name;
  int number;        // among those of the name
  std::string text;  // as strace shows it

  bool holds(const char* part) const { return text.find(part) != text.npos; }
  bool isOneOf(const std::set<std::string>& names) const { return names.contains(name); }
};

std::vector<Call> lastTrace() {
  std::ifstream stream("/run/trace");
  std::map<std::string, int> counts;
  std::vector<Call> calls;
  for (std::string line; std::getline(stream, line);) {
    std::string name = line.substr(0, line.find('('));
    name.erase(0, name.rfind(' ') + 1);  // the process ID that may stand before it
    calls.push_back({name, ++counts[name], line});
  }
  return calls;
}

bool failed(const std::string& output) { return output.find("status_code: ") != output.npos; }

struct Faults {
  const Row& row;
  Outcome clean = {};
  Files before = {};
  Files after = {};
  bool children = false;

  void spoilAll() {
    const FaultHost host(row.store);
    before = host.files();
    clean = run(host, {"-e", "trace=%file,%desc,%network,%process"});
    after = host.files();
    EXPECT_TRUE(clean.exit == 0 && !failed(clean.out)) << clean.err << clean.out;
    const std::vector<Call> calls = lastTrace();
    for (const Call& call : calls) children |= call.isOneOf({"clone", "clone3", "vfork"});
    bool started = false;  // main() begins with a look at the standard descriptors
    for (const Call& call : calls) {
      const bool counts = started && !call.isOneOf({"mmap", "exit_group", "+++", "---"});
      if (counts) spoil(call);
      started |= call.holds("fcntl(2, F_GETFD");
    }
    EXPECT_TRUE(started);
  }

  Outcome run(const FaultHost& host, std::vector<std::string> strace) const {
    strace.insert(strace.begin(), {"/usr/bin/strace", "-o", "/run/trace", "-e", "raw=recvmsg"});
    std::istringstream line(std::string("/usr/sbin/tunadm ") + row.line);
    strace.insert(strace.end(), std::istream_iterator<std::string>(line), {});
    return host.runWords(strace);
  }

  void spoil(const Call& call) const {
    const bool change = call.holds("O_CREAT") || call.holds("unlink") ||
                        call.isOneOf({"write", "rename", "mkdir", "rmdir", "ftruncate", "fsync"});
    spoil(call, "error=EIO");
    if (call.holds("/")) spoil(call, "error=EACCES");
    if (change) spoil(call, "error=ENOSPC");
    if (change) spoil(call, "signal=SIGKILL");
    if (call.name == "write") spoil(call, "retval=1");
    if (call.isOneOf({"openat", "read", "pread64", "write", "ftruncate", "fsync", "flock", "wait4",
                      "close"}))
      spoil(call, "error=EINTR");
  }

  void spoil(const Call& call, const std::string& fault) const {
    SCOPED_TRACE(std::string(row.line) + "\n" + call.text + "\n" + fault);
    std::vector<std::string> options = {
        "-e", "trace=openat,socket,close," + call.name, "-e",
        "inject=" + call.name + ":" + fault + ":when=" + std::to_string(call.number)};
    const bool killed = fault == "signal=SIGKILL";
    // Quicker, but children would have calls of theirs spoiled as well, and a signal gets lost.
    if (!children && !killed) options.insert(options.end(), {"-f", "--seccomp-bpf"});
    const FaultHost host(row.store);
    const Outcome outcome = run(host, options);
    Files files = host.files();
    if (killed) {
      EXPECT_EQ(outcome.signal, SIGKILL);
      expectSound(files, false, true);
      EXPECT_FALSE(failed(host.says("list profiles")));
      const std::string again = host.says(row.line);
      EXPECT_TRUE(!failed(again) || again.find(row.again) != again.npos) << again;
      return expectDocumented(again);
    }
    EXPECT_EQ(outcome.exit, 0) << outcome.signal << outcome.err;
    expectInjection();
    if (fault == "retval=1") {  // the system says that it has written a byte, and has not
      for (const auto& [path, text] : after) EXPECT_GE(files[path].size() + 1, text.size());
    } else {
      expectSound(files, !failed(outcome.out), call.holds("unlink"));
    }
    EXPECT_TRUE(fault != "error=EINTR" || (outcome.out == clean.out && files == after));
    if (fault == "retval=1" || !call.holds("write(1,")) expectDocumented(outcome.out);
  }

  // The call has failed once, and no descriptor stays open.
  static void expectInjection() {
    int injected = 0;
    int open = 0;
    for (const Call& call : lastTrace()) {
      injected += call.holds("(INJECTED)") ? 1 : 0;
      open += call.isOneOf({"openat", "socket"}) && !call.holds(" = -1 ") ? 1 : 0;
      open -= call.name == "close" ? 1 : 0;
    }
    EXPECT_TRUE(injected == 1 && open == 0) << injected << " " << open;
  }

  // A value may fall back to another when a file is unreadable, and one field disappears then.
  void expectDocumented(const std::string& out) const {
    const auto missing = std::ranges::count(clean.out, '\n') - std::ranges::count(out, '\n');
    EXPECT_TRUE(failed(out) ? out.starts_with("status_text: ") : missing <= 1) << out;
  }

  // A file is as it was before the command or as it is after it; after a success only the latter.
  void expectSound(Files now, bool succeeded, bool may_leave_work_file) const {
    Files all = now;
    Files was = before;  // What is not there counts as empty.
    Files will_be = after;
    for (const Files* more : {&before, &after}) all.insert(more->begin(), more->end());
    for (const auto& [path, ignored] : all) {
      EXPECT_TRUE(may_leave_work_file || !path.ends_with(".temp")) << path;
      const std::string name = path.substr(path.rfind('/'));
      const bool in_place =
          name == "/profile_name" || name == "/.current" || name == "/mapconfig.static";
      if (!succeeded && !in_place && name != "/hip.conf" && name != "/endbox.conf") continue;
      bool either = !succeeded;
      for (const char* part : {"/ca-certs/", "/link", "/hipvars.txt", row.unheard})
        either |= path.find(part) != path.npos;
      // A profile in the making begins with copies of the factory profile's files. What is written
      // in place is empty for a while, and a name that cannot be read is given anew: the rules.
      std::set<std::string> good = {will_be[path]};
      if (either) good.insert({was[path], was["/opt/vrx/profiles/.factory" + name]});
      if (either && in_place) good.insert("");
      const bool renamed = name == "/profile_name" && now[path].starts_with("profile");
      EXPECT_TRUE(renamed || good.contains(now[path])) << path << ": " << now[path];
    }
  }
};

TEST(Faults, EachCallOfEachCommand) {
  const Outcome strace = TestHost().run("/usr/bin/strace -o /dev/null true");
  if (strace.exit != 0) {
    printf("skipped, no program can be traced here: %s\n", strace.err.c_str());
    exit(77);
  }
  for (const Row& row : kRows) Faults{row}.spoilAll();
}

}  // namespace
}  // namespace tunadm
