#include "fundkit/SignalHold.h"

namespace tunadm {

// None of these calls can fail: their arguments are constants.
SignalHold::SignalHold() {
  constexpr int kEndings[] = {SIGHUP, SIGINT, SIGTERM};
  sigset_t held;
  (void)sigemptyset(&held);
  for (const int signal : kEndings) (void)sigaddset(&held, signal);
  (void)pthread_sigmask(SIG_BLOCK, &held, &before_);
}

SignalHold::~SignalHold() { (void)pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

void releaseSignals() {
  sigset_t none;
  (void)sigemptyset(&none);
  (void)pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace tunadm
