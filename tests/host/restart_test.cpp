// A service that a command has stopped is started again, whatever happens to the command meanwhile.
// A signal comes at each system call of the command, injected by strace, or from the scripts that
// stop and start the service here.
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <algorithm>

#include "fundkit/ScopedFd.h"
#include "tests/support/Trace.h"

namespace tunadm {
namespace {

const char* const kCommands[] = {"profile activate two", "profile create new helmsman=h activate",
                                 "profile modify one network=eth9 activate"};
const std::string kStop = "/bin/systemctl systemctl stop quenlay\n";
const std::string kStart = "/bin/systemctl systemctl start quenlay\n";

// A host whose daemon runs the profile "one".
struct RestartHost : TestHost {
  RestartHost() {
    // What outlives the program becomes a child of this process. A core file would be left behind.
    const rlimit no_core = {0, 0};
    EXPECT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1) + setrlimit(RLIMIT_CORE, &no_core), 0);
    factory().profile("one", "one").profile("two", "two").file(".current", "one\n", 0666);
    file("one/hip.conf", "# ours\nmaster_interface=auto\n").file("/opt/vrx/.systemctl", "");
    standIn("/bin/systemctl");
    // No update of the daemon's can be newer, so it runs for ever.
    file("one/hipvars.txt", "uptime.now=99999999999\nuptime.started=1\n");
  }

  // Scripts for sys=initd that record their calls and do this in the middle. The start takes the
  // lock of the store, so no process that waits for the start may hold it.
  void scripts(const std::string& in_stop, const std::string& in_start) {
    const auto script = [this](const char* path, const std::string& verb, const std::string& body) {
      file(path, "#!/bin/sh\nexec >>/tmp/calls\necho " + verb + "\n" + body + "\necho end\n", 0755);
    };
    const std::string rename = "\ntimeout 5 tunadm profile rename dir=two new_name=x";
    script("/usr/bin/killall", "stop", in_stop);
    script("/etc/init.d/quenlay", "start", in_start + rename);
  }

  std::string calls() const { return read("/tmp/calls"); }
};

bool lockIsFree() {
  const ScopedFd file(open("/tmp/lock/profiles.lock", O_RDWR | O_CLOEXEC));
  return file.get() < 0 || flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

// The child is the first of a process group.
pid_t spawn(const std::string& line) {
  const pid_t child = fork();
  if (child != 0) return child;
  if (setpgid(0, 0) == 0)
    (void)execl("/bin/sh", "sh", "-c", ("exec " + line + " >/tmp/out").c_str(), nullptr);
  _exit(126);
}

struct Ending {
  int exit = -1;
  int signal = 0;
  int suspended = 0;  // how often it was continued
};

// Runs a command line in a process group of its own, and waits until all processes that come of it
// have ended, those that outlive the command too. Where the command is suspended, it must not hold
// the lock; it is continued then.
Ending runToTheEnd(const std::string& line) {
  Ending ending;
  const pid_t program = spawn(line);
  for (int tries = 0; tries < 50000; ++tries) {
    int status = 0;
    const pid_t changed = waitpid(-1, &status, WNOHANG | WUNTRACED);
    if (changed < 0) {
      EXPECT_TRUE(lockIsFree());
      return ending;
    }
    if (changed == 0) usleep(200);
    if (changed != program) continue;
    if (WIFSIGNALED(status)) ending.signal = WTERMSIG(status);
    if (WIFEXITED(status)) ending.exit = WEXITSTATUS(status);
    if (!WIFSTOPPED(status)) continue;
    EXPECT_TRUE(lockIsFree());
    ++ending.suspended;
    EXPECT_EQ(kill(program, SIGCONT), 0);
  }
  ADD_FAILURE() << "a process does not end: " << line;
  std::exit(1);  // it would disturb what comes next, and vanishes with the host
}

std::string traced(const std::string& options, const std::string& command) {
  return std::string(kStrace) + " -D -qq " + options + " /usr/sbin/tunadm " + command;
}

// Each file is as it was or as the whole command leaves it, or it is a copy in a profile that was
// being made. Only a killed command may leave such a copy half made.
void expectWhole(const TestHost& host, bool killed, std::map<std::string, std::string> before,
                 std::map<std::string, std::string> after) {
  for (const auto& [path, text] : host.files()) {
    if (killed && (path.ends_with(".temp") || (text.empty() && !before.contains(path)))) continue;
    const std::string factory = "/opt/vrx/profiles/.factory" + path.substr(path.rfind('/'));
    const auto is = [&content = text](auto& files, const std::string& at) {
      return files.contains(at) && files[at] == content;
    };
    EXPECT_TRUE(is(before, path) || is(after, path) || is(before, factory)) << path << ": " << text;
  }
}

void signalsAtEachCall(const std::string& command) {
  skipUnlessTracing();
  const std::pair<std::string, int> signals[] = {
      {"KILL", SIGKILL}, {"QUIT", SIGQUIT}, {"HUP", SIGHUP}, {"TSTP", SIGTSTP}};
  RestartHost clean;
  const auto before = clean.files();
  EXPECT_EQ(runToTheEnd(traced("", command)).exit, 0);
  const auto after = clean.files();
  std::vector<Call> calls = lastTrace();  // those before the keeper's channel is made do not matter
  calls.erase(calls.begin(), std::ranges::find(calls, "socketpair", &Call::name));
  std::erase_if(calls, [](const Call& call) { return call.isOneOf({"---", "exit_group"}); });
  ASSERT_TRUE(calls.size() > 20 && calls.back().forks == 2);
  for (const Call& call : calls) {
    for (const auto& [name, number] : signals) {
      SCOPED_TRACE(testing::Message() << command << "\n" << call.text << "\n" << name);
      RestartHost host;
      const Ending ending = runToTheEnd(
          traced("-e trace=" + call.name + " -e " + call.injection("signal=SIG" + name), command));
      const bool stops = number == SIGTSTP;
      EXPECT_TRUE(stops ? ending.exit == 0 : ending.signal == number) << ending.exit;
      EXPECT_EQ(ending.suspended, stops ? 1 : 0);
      // SIGKILL takes effect before the call, and not every process had been made then.
      const int forks = number == SIGKILL ? call.forks : 2;
      EXPECT_EQ(host.calls(), (forks > 1 ? kStop : "") + (forks > 0 ? kStart : ""));
      expectWhole(host, number == SIGKILL, before, after);
    }
  }
}

TEST(Restart, SignalsAtEachCallOfActivate) { signalsAtEachCall(kCommands[0]); }
TEST(Restart, SignalsAtEachCallOfCreate) { signalsAtEachCall(kCommands[1]); }
TEST(Restart, SignalsAtEachCallOfModify) { signalsAtEachCall(kCommands[2]); }

const std::string kScriptStart = "start\nprofile_name: x\nend\n";
const std::string kScriptCalls = "stop\nend\n" + kScriptStart;

// A process that kept its own copy of the command's end of their channel would not see it close.
TEST(Restart, OnKernelsWithoutCloseRange) {
  skipUnlessTracing();
  RestartHost host;
  host.scripts("kill -s KILL $PPID; sleep 0.1", "");
  const rlimit few = {256, 256};  // each is closed by a call of its own then
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  const std::string refused = "-f -e trace=close_range -e inject=close_range:error=ENOSYS";
  EXPECT_EQ(runToTheEnd(traced(refused, "profile activate two sys=initd")).signal, SIGKILL);
  EXPECT_EQ(host.calls(), kScriptCalls);
  EXPECT_NE(host.read("/run/trace").find("(INJECTED)"), std::string::npos);
}

TEST(Restart, SignalsFromTheScripts) {
  const std::string unfinished = "stop\n" + kScriptStart;
  const char kill_keeper[] =
      "for child in $(cat /proc/$PPID/task/$PPID/children); do\n"
      "  [ $child = $$ ] || kill -s KILL $child\ndone";
  const struct {
    const char* in_stop;
    const char* in_start;
    int signal;  // that ends the command
    int suspended;
    std::string calls;
  } cases[] = {
      // A signal to the process group, such as Ctrl-C sends, reaches the command and what it runs.
      {"kill -s INT 0", "", SIGINT, 0, unfinished},
      {"kill -s TERM 0", "", SIGTERM, 0, unfinished},
      {"kill -s KILL 0", "", SIGKILL, 0, unfinished},
      {"kill -s TSTP 0", "", 0, 1, kScriptCalls},
      {"", "kill -s INT -- -$PPID", SIGINT, 0, kScriptCalls},
      {"", "kill -s TSTP -- -$PPID", 0, 1, kScriptCalls},
      {"kill -s KILL $PPID; sleep 0.1", "", SIGKILL, 0, kScriptCalls},
      {"", "kill -s KILL $PPID", SIGKILL, 0, kScriptCalls},
      {kill_keeper, "", 0, 0, kScriptCalls},
      {"until grep -q start /tmp/calls; do sleep 0.1; done &", "", 0, 0, kScriptCalls},
      // A listing takes the lock when it has a name to repair.
      {"", "mkdir /opt/vrx/profiles/new; timeout 5 tunadm list profiles | grep new:", 0, 0,
       "stop\nend\nstart\nnew: profile\nprofile_name: x\nend\n"},
  };
  for (const std::string command : kCommands) {
    for (const auto& c : cases) {
      SCOPED_TRACE(command + ", " + c.in_stop + ", " + c.in_start);
      RestartHost host;
      host.scripts(c.in_stop, c.in_start);
      const Ending ending = runToTheEnd("/usr/sbin/tunadm " + command + " sys=initd");
      EXPECT_EQ(ending.exit, c.signal == 0 ? 0 : -1);
      EXPECT_EQ(ending.signal, c.signal);
      EXPECT_EQ(ending.suspended, c.suspended);
      EXPECT_EQ(host.calls(), c.calls);
    }
  }
}

}  // namespace
}  // namespace tunadm
