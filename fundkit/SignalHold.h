// Keeping a change from being left half done by a signal.
#pragma once

#include <csignal>

namespace tunadm {

// Holds back, in this thread and as long as it lives, every signal that can come from outside and
// ends or stops a process. One that arrives meanwhile takes effect at the end. Not held: SIGKILL
// and SIGSTOP, which cannot be; SIGCHLD, which does nothing; and what the process raises itself by
// a fault or abort(). Several may live at once; the signals are held until the last one ends.
class SignalHold {
 public:
  SignalHold();
  SignalHold(const SignalHold&) = delete;
  SignalHold& operator=(const SignalHold&) = delete;
  ~SignalHold();
};

// Within a SignalHold, lets through again, as long as it lives, the signals that end a process and
// that were not held before the outermost hold: a wait for a child may be ended by them. Those that
// stop a process (SIGTSTP, SIGTTIN, SIGTTOU) stay held. Without a hold, changes nothing.
class SignalRelease {
 public:
  SignalRelease();
  SignalRelease(const SignalRelease&) = delete;
  SignalRelease& operator=(const SignalRelease&) = delete;
  ~SignalRelease();

 private:
  sigset_t before_;
};

// Gives every signal its default effect and holds none back, after those that were held back have
// been discarded: for a child process that is about to become another program, which would inherit
// all of that. Safe after fork in a program with threads.
void resetSignals();

}  // namespace tunadm
