// The process that sees to it that a stopped service is started again.
#pragma once

#include <sys/types.h>

#include "core/Status.h"
#include "fundkit/ScopedFd.h"

namespace tunadm {

// Made before the service is stopped. The keeper is a child process that waits until it is told to
// go on or this process is gone, and then starts the service through the adapter that was installed
// when it was made. So the start is lost only if both are
// killed, or the start itself is.
//
// The keeper has a session of its own, so that what is sent to this process's group or typed at its
// terminal does not reach it. It starts the service with default signals, this process's umask and
// its standard descriptors.
class StartKeeper {
 public:
  // Returns when the keeper waits, out of the reach of signals to this process's group.
  StartKeeper();
  // Starts the service, without waiting for that, if start() has not been called.
  ~StartKeeper() = default;
  StartKeeper(const StartKeeper&) = delete;
  StartKeeper& operator=(const StartKeeper&) = delete;

  // False when there is no keeper: the system has refused a channel to it or a process, or it was
  // killed at once.
  [[nodiscard]] bool valid() const { return keeper_ > 0; }

  // For a child process that is about to become the command that stops the service: as long as that
  // runs, the end of this process starts nothing, so that a start never overtakes the stop.
  void outlastThisChild() const;

  // Starts the service and waits for the outcome. A keeper that was killed is replaced by a new
  // child process. Once only. Fails as runChild.
  Status start();

 private:
  pid_t keeper_ = -1;
  ScopedFd channel_;  // a socket whose other end the keeper has
};

}  // namespace tunadm
