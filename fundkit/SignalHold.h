// Keeping a change from being left half done by a signal.
#pragma once

#include <csignal>

namespace tunadm {

// Holds back, in this thread and as long as it lives, the signals by which people and the system
// ask a process to end: SIGHUP, SIGINT and SIGTERM. One that came meanwhile takes effect at its
// end.
class SignalHold {
 public:
  SignalHold();
  SignalHold(const SignalHold&) = delete;
  SignalHold& operator=(const SignalHold&) = delete;
  ~SignalHold();

 private:
  sigset_t before_;
};

// Lets all signals through again: for a child that is about to become another program, which would
// inherit what is held back here.
void releaseSignals();

}  // namespace tunadm
