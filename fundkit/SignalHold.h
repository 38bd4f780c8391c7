// Keeping a change from being left half done by a signal.
#pragma once

#include <csignal>

namespace tunadm {

// Holds back, in this thread and as long as it lives, every signal that can come from outside and
// ends or stops a process. One that arrives meanwhile takes effect at the end. Not held: SIGKILL
// and SIGSTOP, which cannot be; SIGCHLD, which does nothing; and what the process raises itself by
// a fault or abort(). May be nested.
class SignalHold {
 public:
  SignalHold();
  SignalHold(const SignalHold&) = delete;
  SignalHold& operator=(const SignalHold&) = delete;
  ~SignalHold();

 private:
  sigset_t before_;
};

// Within a SignalHold, brings the signal mask back, as long as it lives, that was in force before
// the outermost hold: a wait for a child may be ended by a signal. Without one, changes nothing.
class SignalRelease {
 public:
  SignalRelease();
  SignalRelease(const SignalRelease&) = delete;
  SignalRelease& operator=(const SignalRelease&) = delete;
  ~SignalRelease();

 private:
  sigset_t before_;
};

// Gives every signal its default effect and holds none back: for a child process that is about to
// become another program, which would inherit both. Safe after fork in a program with threads.
void resetSignals();

}  // namespace tunadm
