// Running another program as a child process.
#pragma once

#include <sys/types.h>

#include <initializer_list>

namespace tunadm {

// The outcomes of a child: an exit status or a signal number is added to the first two.
inline constexpr int kExitBase = 1000;
inline constexpr int kSignalBase = 2000;
inline constexpr int kWaitFailed = 3001;
inline constexpr int kNoChild = 3002;

// Replaces the process by the program at `path`, with up to five arguments (the first is the
// program's name as it sees it), the environment as it is and no signal held back. Ends the process
// as below when the program cannot be run.
[[noreturn]] void becomeProgram(const char* path, std::initializer_list<const char*> arguments);

// Ends a child that has not become another program, with exit code 101 and without the parent's
// exit handlers.
[[noreturn]] void endUnstartedChild();

// The outcome that a wait status (waitpid(2)) stands for.
int childOutcome(int wait_status);

// Waits until `child` has ended and returns its outcome; kNoChild for 0, kWaitFailed when it cannot
// be waited for.
int waitForChild(pid_t child);

}  // namespace tunadm
