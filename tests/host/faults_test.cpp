// Every system call of every command fails once, and the program is killed before every change that
// it makes: each command runs under strace, which shows the calls and then spoils one at a time.

#include <algorithm>
#include <cctype>
#include <ostream>
#include <set>

#include "tests/support/Trace.h"

namespace tunadm {
namespace {

using namespace std::literals;

using Files = std::map<std::string, std::string>;
using Texts = std::multiset<std::string>;

// What a command may do while one of its system calls fails. Words stand between blanks.
struct Row {
  const char* line;
  const char* store = "";
  const char* codes = "";              // with which it may fail then
  const char* changes = "";            // the fields of a success that may differ or be missing
  const char* again = "";              // with which it may fail if it is repeated after a kill
  const char* unheard = "/ca-certs/";  // part of the paths whose failed change it does not report
  int flushes = 0;                     // how many calls of the undisturbed command flush something
};

// A file that cannot be read shows as an empty value, and an address as none.
constexpr const char* kDetails =
    "helmsman= network= deviceID= overlay_device_ip= overlay_mask= invitation= log_level=";

const Row kRows[] = {
    {.line = "profile create office helmsman=h:1 network=eth0 invitation=abc activate",
     .store = "running",
     .codes = "10000003 12000001 14000002 14000005 14000006 14000007 14000010 1400000a 1400000b "
              "16001001",
     .changes = kDetails,
     .flushes = 21},
    {.line = "list profiles",
     .store = "names to repair",
     .codes = "12000001",
     .changes = "current_dir: current_name:",
     .unheard = "/profile_name",
     .flushes = 2},
    {.line = "list versions", .changes = "hipapp_version:"},
    {.line = "list interfaces", .codes = "14000009"},
    {.line = "list log one", .codes = "12000001 14000006"},
    {.line = "profile details one", .codes = "12000001", .changes = kDetails},
    {.line = "profile rename dir=one new_name=new",
     .codes = "10000003 12001001 14000005 14000007 14000010",
     .again = "10000003",
     .flushes = 2},
    {.line = "profile modify dir=one helmsman=h:1 log_level=debug network=eth1 new_name=new",
     .codes = "10000003 12000001 12001001 14000005 14000007 14000010",
     .changes = kDetails,
     .again = "10000003",
     .unheard = "/one/hip.conf",
     .flushes = 8},
    {.line = "profile modify one invitation=### activate",
     .store = "running",
     .codes = "12000001 12001002 1400000a 1400000b 16001001",
     .changes = kDetails,
     .unheard = "/one/endbox.conf",
     .flushes = 2},
    {.line = "profile activate two",
     .store = "running",
     .codes = "12000001 1400000a 1400000b 16001001",
     .flushes = 2},
    {.line = "profile delete dir=two", .codes = "12000001 12001001", .again = "12001001"},
    {.line = "profile delete dir=two",
     .store = "no other",
     .codes = "12000001 12001001",
     .again = "12001001",
     .unheard = "/profile-123123/",
     .flushes = 15},
    {.line = "support reset two", .codes = "12000001", .unheard = "/two/peers"},
    {.line = "support bundle", .codes = "14000013"},
    {.line = "service start", .codes = "1400000a 1400000b 16001001"},
    {.line = "service stop", .codes = "1400000a 1400000b 16001001"},
    {.line = "service restart", .codes = "1400000a 1400000b 16001001"},
    {.line = "service status", .store = "running", .changes = "running:"},
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.line; }

// How the lines begin that a command may print on standard error while a call of it fails.
constexpr std::string_view kMessages[] = {
    "E~ tunadm ConfigControl.cpp read_networks: could not getifaddrs; status = -1",
    "E~ tunadm LinePrinter.cpp write: write output: ",
    "E~ tunadm ProfileControl.cpp cmdGetProfileDetails: could not execute read_networks",
    "W~ tunadm CurrentProfile.cpp setCurrentAfterStop: the daemon was not stopped",
    "W~ tunadm PassedFailure.cpp logPassedFailure: ",
    "W~ tunadm ProfileLock.cpp ProfileLock: the lock directory is not to be trusted",
};

const std::set<std::string> kFlushingCalls = {"fsync", "fdatasync", "syncfs"};

// The calls that open a descriptor and return it; of the last three, two in brackets.
constexpr const char* kOpeningCalls =
    "openat,open,creat,openat2,socket,accept4,dup,dup3,memfd_create,epoll_create1,eventfd2,"
    "inotify_init1,signalfd4,pidfd_open,timerfd_create,pipe2,pipe,socketpair";

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

// The descriptor that a close ends.
std::string closedBy(const Call& call) {
  const std::size_t begin = call.text.find('(') + 1;
  return call.text.substr(begin, call.text.find(')') - begin);
}

// The descriptors that a call opens.
std::vector<std::string> openedBy(const Call& call) {
  const std::string calls = std::string(",") + kOpeningCalls + ",";
  const bool opens = calls.find("," + call.name + ",") != calls.npos || call.holds(", F_DUPFD");
  const std::string result = call.text.substr(call.text.rfind(" = ") + 3);
  if (!opens || result.starts_with('-')) return {};
  if (result != "0") return {result.substr(0, result.find(' '))};
  const std::size_t begin = call.text.find('[') + 1;
  const std::size_t comma = call.text.find(", ", begin);
  const std::size_t end = call.text.find(']', begin);
  return {call.text.substr(begin, comma - begin), call.text.substr(comma + 2, end - comma - 2)};
}

bool isWordOf(const std::string& words, const std::string& word) {
  return (" " + words + " ").find(" " + word + " ") != words.npos;
}

std::string fieldOf(const std::string& line) {
  return line.substr(0, line.find_first_of("=:") + 1);
}

enum class Values { kMatter, kMayDiffer };

// The lines of an output, or only the fields that they show.
Texts partsOf(const std::string& text, Values values = Values::kMatter) {
  std::istringstream stream(text);
  Texts parts;
  for (std::string line; std::getline(stream, line);)
    parts.insert(values == Values::kMatter ? line : fieldOf(line));
  return parts;
}

// What stands in one of both only.
Texts differences(const Texts& one, const Texts& other) {
  Texts found;
  std::ranges::set_symmetric_difference(one, other, std::inserter(found, found.end()));
  return found;
}

bool failed(const std::string& output) { return output.find("status_code: ") != output.npos; }

struct FaultyRuns {
  const Row& row;
  Outcome clean = {};
  Files before = {};
  Files after = {};
  bool has_children = false;

  void spoilAll() {
    const FaultHost host(row.store);
    before = host.files();
    clean = run(host, "-e trace=%file,%desc,%network,%process");
    after = host.files();
    EXPECT_EQ(clean.exit, 0);
    EXPECT_FALSE(failed(clean.out)) << clean.out;
    EXPECT_EQ(clean.err, "");
    const std::vector<Call> calls = lastTrace();
    const auto flushes =
        std::ranges::count_if(calls, [](const Call& call) { return call.isOneOf(kFlushingCalls); });
    EXPECT_EQ(flushes, row.flushes);
    has_children = calls.back().forks > 0;
    std::set<std::string> pipe_ends, written;
    bool started = false;  // main() begins with a look at the standard descriptors
    for (const Call& call : calls) {
      const std::vector<std::string> opened = openedBy(call);
      if (opened.size() == 2) pipe_ends.insert(opened.begin(), opened.end());
      if (call.holds("O_CREAT") && !call.holds(".lock\"")) written.insert(opened.front());
      const bool ends_writing =
          call.name == "fsync" || (call.name == "close" && written.erase(closedBy(call)) > 0);
      // A close that strace lets fail does not close: who reads at the other end would wait on.
      const bool closes_pipe = call.name == "close" && pipe_ends.erase(closedBy(call)) > 0;
      const bool counts =
          started && !closes_pipe && !call.isOneOf({"mmap", "exit_group", "+++", "---"});
      if (counts) spoil(call, ends_writing);
      started |= call.holds("fcntl(2, F_GETFD");
    }
    EXPECT_TRUE(started);
  }

  Outcome run(const FaultHost& host, const std::string& options) const {
    return host.run(std::string(kStrace) + " " + options + " /usr/sbin/tunadm " + row.line);
  }

  void spoil(const Call& call, bool ends_writing) const {
    const bool change = call.holds("O_CREAT") || call.holds("unlink") ||
                        call.isOneOf({"write", "rename", "mkdir", "rmdir", "ftruncate", "fsync"});
    const Outcome outcome = runSpoiled(call, "error=EIO");
    EXPECT_TRUE(!ends_writing || failed(outcome.out) || !outcome.err.empty())
        << row.line << ": nothing is said of a failed " << call.text;
    if (call.holds("/")) runSpoiled(call, "error=EACCES");
    if (change) runSpoiled(call, "error=ENOSPC");
    if (change) runSpoiled(call, "signal=SIGKILL");
    if (call.name == "write") runSpoiled(call, "retval=1");
    if (call.isOneOf({"openat", "read", "pread64", "write", "ftruncate", "fsync", "flock", "wait4",
                      "close"}))
      runSpoiled(call, "error=EINTR");
  }

  Outcome runSpoiled(const Call& call, const std::string& fault) const {
    SCOPED_TRACE(std::string(row.line) + "\n" + call.text + "\n" + fault);
    std::string options = std::string("-e trace=close,fcntl,") + kOpeningCalls + "," + call.name +
                          " -e " + call.injection(fault);
    const bool killed = fault == "signal=SIGKILL";
    // Quicker, but children would have calls of theirs spoiled as well, and a signal gets lost.
    if (!has_children && !killed) options += " -f --seccomp-bpf";
    const FaultHost host(row.store);
    Outcome outcome = run(host, options);
    Files files = host.files();
    expectStarted(host);
    if (killed) {
      EXPECT_EQ(outcome.signal, SIGKILL);
      expectSound(files, false, true);
      EXPECT_FALSE(failed(host.says("list profiles")));
      expectResult(host.says(row.line), row.again, Values::kMayDiffer);
      return outcome;
    }
    EXPECT_EQ(outcome.exit, 0) << outcome.signal;
    expectInjection();
    expectKnown(outcome);
    const bool is_output = call.holds("write(1,");
    if (fault == "retval=1") {  // the system says that it has written a byte, and has not
      for (const auto& [path, text] : after) EXPECT_GE(files[path].size() + 1, text.size());
      if (is_output) {
        EXPECT_EQ(outcome.out, clean.out.substr(1));
      } else {
        expectResult(outcome.out, "", Values::kMayDiffer);
      }
      return outcome;
    }
    expectSound(files, !failed(outcome.out), call.holds("unlink"));
    // Of what a success did not change it warns; only a link of the factory's may go unsaid.
    const bool about_link = call.holds("\"link\"") || call.holds("\"/opt/vrx/.systemctl\"");
    EXPECT_TRUE(failed(outcome.out) || about_link || files == after || !outcome.err.empty())
        << "not all is done, and it says nothing";
    if (!is_output) expectResult(outcome.out, row.codes);
    if (fault == "error=EINTR") {
      EXPECT_EQ(outcome.out, clean.out);
      EXPECT_EQ(files, after);
    }
    return outcome;
  }

  // A service that is stopped for a change is started again, also by what outlives the program. The
  // two come in any order where the wait for the first is spoiled.
  void expectStarted(const TestHost& host) const {
    const auto called = [&](const char* verb) {
      return host.read("/tmp/calls").find(verb + " quenlay\n"s) != std::string::npos;
    };
    if (!std::string(row.line).starts_with("profile")) return;
    const time_t deadline = time(nullptr) + 20;
    while (called("stop") && !called("start") && time(nullptr) < deadline) usleep(1000);
    EXPECT_TRUE(called("start") || !called("stop")) << host.read("/tmp/calls");
  }

  // The call has failed once, and no descriptor stays open.
  static void expectInjection() {
    int injected = 0;
    Texts open;
    for (const Call& call : lastTrace()) {
      injected += call.holds("(INJECTED)") ? 1 : 0;
      for (const std::string& descriptor : openedBy(call)) open.insert(descriptor);
      if (call.name != "close") continue;
      EXPECT_EQ(open.erase(closedBy(call)), 1u) << call.text;
    }
    EXPECT_EQ(injected, 1);
    EXPECT_EQ(open, Texts());
  }

  // A failure has one of the codes. Of a success nothing is missing that need not be.
  void expectResult(const std::string& out, const char* codes,
                    Values values = Values::kMatter) const {
    if (failed(out)) {
      EXPECT_EQ(std::ranges::count(out, '\n'), 2) << out;
      EXPECT_TRUE(out.starts_with("status_text: ")) << out;
      EXPECT_TRUE(isWordOf(codes, out.substr(out.find("status_code: 0x") + 15, 8))) << out;
      return;
    }
    for (const std::string& part : differences(partsOf(clean.out, values), partsOf(out, values)))
      EXPECT_TRUE(isWordOf(row.changes, fieldOf(part))) << part << " of:\n" << out;
  }

  // Standard error has the messages that may come at any time, and why a command failed once.
  void expectKnown(const Outcome& outcome) const {
    const std::string command = row.line;
    const std::string reason = "E~ tunadm Program.cpp sayWhy: " +
                               command.substr(0, command.find(' ', command.find(' ') + 1)) + ": ";
    int reasons = 0;
    for (const std::string& line : partsOf(outcome.err)) {
      const bool known = std::ranges::any_of(
          kMessages, [&line](std::string_view text) { return line.starts_with(text); });
      if (known) continue;
      EXPECT_EQ(line.substr(0, reason.size()), reason) << line;
      ++reasons;
    }
    EXPECT_LE(reasons, failed(outcome.out) ? 1 : 0) << outcome.err;
  }

  // A file is as it was before the command or as it is after it; after a success only the latter.
  void expectSound(Files now, bool succeeded, bool may_leave_work_file) const {
    Files all = now;
    Files was = before;  // What is not there counts as empty.
    Files will_be = after;
    for (const Files* more : {&before, &after}) all.insert(more->begin(), more->end());
    for (const auto& [path, ignored] : all) {
      if (path.ends_with(".temp")) {
        EXPECT_TRUE(may_leave_work_file) << path;
        continue;
      }
      const std::string name = path.substr(path.rfind('/'));
      bool either = !succeeded;
      for (const char* part : {"/ca-certs/", "/link", "/hipvars.txt", row.unheard})
        either |= path.find(part) != path.npos;
      // A profile in the making begins with copies of the factory profile's files.
      std::set<std::string> good = {will_be[path]};
      if (either) good.insert({was[path], was["/opt/vrx/profiles/.factory" + name]});
      EXPECT_TRUE(good.contains(now[path])) << path << ": " << now[path];
    }
  }
};

class Faults : public testing::TestWithParam<Row> {};

TEST_P(Faults, EachCall) {
  skipUnlessTracing();
  FaultyRuns{GetParam()}.spoilAll();
}

TEST(Output, HasNoHoleAfterAFailedWrite) {
  skipUnlessTracing();
  TestHost host;
  host.profile("a", "a").file("a/hip.log", std::string(400000, 'x'));  // more than one write takes
  EXPECT_EQ(host.shell("strace -qq -o /dev/null -e inject=write:error=EIO:when=1 "
                       "tunadm list log a max_lines=1000 2>/dev/null | wc -c"),
            "0\n");
}

// strace makes no call in these places, but puts the first byte of the log where that would.
TEST(Log, MayComeInPieces) {
  skipUnlessTracing();
  TestHost host;
  host.profile("a", "a").file("a/hip.log", "E~ one\nE~ two\n");
  EXPECT_EQ(
      host.shell("strace -qq -o /dev/null -e inject=pread64:retval=1:poke_exit=@arg2=45:when=1+2 "
                 "tunadm list log a"),
      "E~ one\nE~ two\nprofile_name: a\n");
}

// The command, and the store if it is not the usual one.
std::string nameOf(const testing::TestParamInfo<Row>& row) {
  std::string name = row.param.line;
  if (*row.param.store != '\0') name.append(" ").append(row.param.store);
  std::ranges::replace_if(
      name, [](unsigned char byte) { return std::isalnum(byte) == 0; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Commands, Faults, testing::ValuesIn(kRows), &nameOf);

}  // namespace
}  // namespace tunadm
