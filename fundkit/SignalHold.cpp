#include "fundkit/SignalHold.h"

// Results are not checked: the arguments are constants, and the system ignores signals whose effect
// cannot be changed.
namespace tunadm {
namespace {

constexpr int kNotHeld[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT, SIGCHLD};

// What a terminal stops a process with. Their default effect would leave a lock held.
constexpr int kStopping[] = {SIGTSTP, SIGTTIN, SIGTTOU};

// For the calling thread: how many holds live, and the mask before the first of them.
thread_local int holds = 0;
thread_local sigset_t outermost_mask;

}  // namespace

SignalHold::SignalHold() {
  sigset_t held;
  sigset_t before;
  sigfillset(&held);
  for (const int signal : kNotHeld) sigdelset(&held, signal);
  pthread_sigmask(SIG_BLOCK, &held, &before);
  if (holds++ == 0) outermost_mask = before;
}

SignalHold::~SignalHold() {
  if (--holds == 0) pthread_sigmask(SIG_SETMASK, &outermost_mask, nullptr);
}

SignalRelease::SignalRelease() {
  sigset_t released = outermost_mask;
  for (const int signal : kStopping) sigaddset(&released, signal);
  pthread_sigmask(SIG_SETMASK, holds > 0 ? &released : nullptr, &before_);
}

SignalRelease::~SignalRelease() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

void resetSignals() {
  for (int number = 1; number <= SIGRTMAX; ++number) {
    std::signal(number, SIG_IGN);  // discards one that was held back
    std::signal(number, SIG_DFL);
  }
  sigset_t none;
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace tunadm
