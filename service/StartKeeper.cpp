#include "service/StartKeeper.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "fundkit/DescriptorIo.h"
#include "fundkit/SignalHold.h"
#include "service/ChildProcess.h"
#include "service/InitSystems.h"

namespace tunadm {
namespace {

constexpr int kPipe = STDERR_FILENO + 1;

// Lets go of everything that was inherited except the standard descriptors and the pipe: above all
// of the lock file, which would stay locked.
void closeAllBut(int pipe_end) {
  (void)dup2(pipe_end, kPipe);  // both are open
  if (close_range(kPipe + 1, ~0U, 0) == 0) return;
  // Kernels before 5.9 do not know the call.
  for (long descriptor = sysconf(_SC_OPEN_MAX); descriptor > kPipe; --descriptor) {
    (void)close(static_cast<int>(descriptor));
  }
}

// Becomes the init system's command in the end.
void keep(int pipe_end) {
  (void)setsid();  // a new child leads no group, so this succeeds
  resetSignals();
  closeAllBut(pipe_end);
  char nothing = 0;
  (void)readSome(kPipe, &nothing, 1);  // returns when the pipe has no other end any more
  (void)close(kPipe);
  currentSystem().start();
}

}  // namespace

StartKeeper::StartKeeper() {
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  const ScopedFd waiting_end(ends[0]);
  held_end_ = ScopedFd(ends[1]);
  keeper_ = forkChild([&waiting_end] { keep(waiting_end.get()); });
}

void StartKeeper::outlastThisChild() const { (void)fcntl(held_end_.get(), F_SETFD, 0); }

Status StartKeeper::start() {
  if (hasEnded(keeper_)) return runChild([] { currentSystem().start(); });
  (void)held_end_.close();  // nothing was written to it
  return awaitChild(keeper_);
}

}  // namespace tunadm
