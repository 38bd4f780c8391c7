#include "service/ChildProcess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "fundkit/SignalHold.h"

namespace tunadm {
namespace {

constexpr int kUnstarted = 101;
constexpr std::size_t kMostArguments = 5;

}  // namespace

void becomeProgram(const char* path, std::initializer_list<const char*> arguments) {
  char* vector[kMostArguments + 1] = {};
  std::size_t count = 0;
  for (const char* argument : arguments) {
    if (count == kMostArguments) break;
    vector[count++] = const_cast<char*>(argument);  // execve does not write to them
  }
  releaseSignals();
  (void)execve(path, vector, environ);  // returns only on failure
  endUnstartedChild();
}

void endUnstartedChild() { _exit(kUnstarted); }

int childOutcome(int wait_status) {
  if (WIFEXITED(wait_status)) return kExitBase + WEXITSTATUS(wait_status);
  if (WIFSIGNALED(wait_status)) return kSignalBase + WTERMSIG(wait_status);
  if (WIFSTOPPED(wait_status)) return kSignalBase + WSTOPSIG(wait_status);
  return kWaitFailed;
}

int waitForChild(pid_t child) {
  if (child == 0) return kNoChild;
  int wait_status = 0;
  pid_t ended = -1;
  do {
    ended = waitpid(child, &wait_status, 0);
  } while (ended < 0 && errno == EINTR);
  return ended < 0 ? kWaitFailed : childOutcome(wait_status);
}

}  // namespace tunadm
