// Running another program as a child process.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>

#include "core/Status.h"

namespace tunadm {

inline constexpr std::size_t kMostArguments = 5;

// A program and the arguments that it is run with, the first being its name as it sees it. Unused
// places are null. A call with too many arguments does not compile.
struct ProgramCall {
  const char* path;
  const char* arguments[kMostArguments];
};

// Replaces the process by that program, with the environment as it is and no signal held back. Ends
// the process as below when the program cannot be run.
[[noreturn]] void becomeProgram(const ProgramCall& call);

// Ends a child that has not become another program, with exit code 101 and without the parent's
// exit handlers.
[[noreturn]] void endUnstartedChild();

// Runs `body` in a child process, which is to become another program there; a body that returns
// ends the child as above. The child's output goes where this process's own goes. Returns its
// process ID, or -1 when the system refuses one.
[[nodiscard]] pid_t forkChild(const std::function<void()>& body);

// The same, and waits for the end of the child. Fails with kForkFailed or as awaitChild.
Status runChild(const std::function<void()>& body);

// The outcomes of a child: an exit status or a signal number is added to the first two.
inline constexpr int kExitBase = 1000;
inline constexpr int kSignalBase = 2000;
inline constexpr int kWaitFailed = 3001;
inline constexpr int kNoChild = 3002;

// Waits until `child` has ended and returns its outcome; signals that end this process do so while
// it waits. kNoChild for 0, kWaitFailed when it cannot be waited for (waitpid(2)).
[[nodiscard]] int waitForChild(pid_t child);

// The outcome that a wait status (waitpid(2)) tells of.
[[nodiscard]] int outcomeOf(int wait_status);

// "exit status 1", "signal 9"; only for these outcomes.
std::string outcomeText(int outcome);

// Why the program at `path`, run by `command`, exited with a failure: that it cannot be executed,
// if so, or else `ending`: "/bin/systemctl stop quenlay: exit status 1".
std::string exitCause(const char* path, const std::string& command, const std::string& ending);

// Waits in the same way and returns the outcome as a status: kSuccess after exit status 0, else
// kChildExitedNonzero, kChildSignalled or kWaitpidFailed.
Status awaitChild(pid_t child);

}  // namespace tunadm
