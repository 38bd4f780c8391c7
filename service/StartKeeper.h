// The process that sees to it that a stopped service is started again.
#pragma once

#include <sys/types.h>

#include "core/Status.h"
#include "fundkit/ScopedFd.h"

namespace tunadm {

// Made before the service is stopped. The keeper is a child process that waits until a pipe is
// closed, on purpose or because this process is gone, and then starts the service through the
// adapter that was installed when it was made. So the start is lost only if both are killed.
//
// The keeper has a session of its own, so that what is sent to this process's group or typed at its
// terminal does not reach it. It starts the service with default signals, this process's umask and
// its standard descriptors.
class StartKeeper {
 public:
  StartKeeper();
  // Starts the service, without waiting for that, if start() has not been called.
  ~StartKeeper() = default;
  StartKeeper(const StartKeeper&) = delete;
  StartKeeper& operator=(const StartKeeper&) = delete;

  // False when there is no keeper: the system has refused a pipe or a process.
  [[nodiscard]] bool valid() const { return keeper_ > 0; }

  // For a child process that is about to become the command that stops the service: holds the pipe
  // open as long as that runs, so that a start never overtakes the stop.
  void outlastThisChild() const;

  // Starts the service and waits for the outcome. A keeper that was killed is replaced by a new
  // child process. Once only. Fails as runChild.
  Status start();

 private:
  pid_t keeper_ = -1;
  ScopedFd held_end_;  // of the pipe
};

}  // namespace tunadm
