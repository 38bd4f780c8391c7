#include "service/ChildProcess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iterator>

#include "core/ProgramStatus.h"
#include "fundkit/SignalHold.h"
#include "fundkit/SystemFailure.h"

namespace tunadm {
namespace {

constexpr int kUnstarted = 101;

}  // namespace

void becomeProgram(const ProgramCall& call) {
  char* vector[kMostArguments + 1] = {};
  // execve does not write to the texts.
  std::transform(std::begin(call.arguments), std::end(call.arguments), vector,
                 [](const char* argument) { return const_cast<char*>(argument); });
  sigset_t none;
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
  execve(call.path, vector, environ);  // returns only on failure
  endUnstartedChild();
}

void endUnstartedChild() { _exit(kUnstarted); }

pid_t forkChild(const std::function<void()>& body) {
  const pid_t child = fork();
  if (child != 0) return child;
  body();
  endUnstartedChild();
}

Status runChild(const std::function<void()>& body) {
  const pid_t child = forkChild(body);
  return child < 0 ? systemFailure(kForkFailed, "fork", "") : awaitChild(child);
}

int waitForChild(pid_t child) {
  if (child == 0) return kNoChild;
  const SignalRelease release;
  int wait_status = 0;
  pid_t ended = -1;
  do {
    ended = waitpid(child, &wait_status, 0);
  } while (ended < 0 && errno == EINTR);
  return ended < 0 ? kWaitFailed : outcomeOf(wait_status);
}

int outcomeOf(int wait_status) {
  if (WIFEXITED(wait_status)) return kExitBase + WEXITSTATUS(wait_status);
  if (WIFSIGNALED(wait_status)) return kSignalBase + WTERMSIG(wait_status);
  if (WIFSTOPPED(wait_status)) return kSignalBase + WSTOPSIG(wait_status);
  return kWaitFailed;
}

std::string outcomeText(int outcome) {
  return outcome < kSignalBase ? "exit status " + std::to_string(outcome - kExitBase)
                               : "signal " + std::to_string(outcome - kSignalBase);
}

std::string exitCause(const char* path, const std::string& command, const std::string& ending) {
  // The exit status of a program that could not be run says nothing.
  return access(path, X_OK) != 0 ? systemCause("execute", path) : command + ": " + ending;
}

Status awaitChild(pid_t child) {
  const int outcome = waitForChild(child);
  if (outcome == kExitBase) return Status(kSuccess);
  if (outcome >= kWaitFailed) return systemFailure(kWaitpidFailed, "waitpid", "");
  const StatusCode code = outcome < kSignalBase ? kChildExitedNonzero : kChildSignalled;
  return Status(code).because(outcomeText(outcome));
}

}  // namespace tunadm
