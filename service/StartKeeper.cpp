#include "service/StartKeeper.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "fundkit/DescriptorIo.h"
#include "fundkit/SignalHold.h"
#include "service/ChildProcess.h"
#include "service/InitSystems.h"

namespace tunadm {
namespace {

constexpr int kChannel = STDERR_FILENO + 1;

// Lets go of everything that was inherited except the standard descriptors and the channel: above
// all of the lock file, which would stay locked.
void closeAllBut(int channel) {
  (void)dup2(channel, kChannel);  // both are open
  if (close_range(kChannel + 1, ~0U, 0) == 0) return;
  // Kernels before 5.9 do not know the call.
  for (long descriptor = sysconf(_SC_OPEN_MAX); descriptor > kChannel; --descriptor) {
    (void)close(static_cast<int>(descriptor));
  }
}

// Unlike write(2), raises no SIGPIPE when the other process is gone.
[[nodiscard]] bool sendByte(int channel) {
  ssize_t sent = -1;
  do {
    sent = send(channel, "!", 1, MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  return sent == 1;
}

// False at the end of the channel: no process has its other end any more.
[[nodiscard]] bool receiveByte(int channel) {
  char byte = 0;
  return readSome(channel, &byte, 1) == 1;
}

// Becomes the init system's command in the end. Each byte that is sent tells how far it has come.
void keep(int channel) {
  setsid();  // a new child leads no group, so this succeeds
  resetSignals();
  closeAllBut(channel);
  (void)sendByte(kChannel);     // ready
  (void)receiveByte(kChannel);  // an order, or the end of the channel: both mean the same
  (void)sendByte(kChannel);     // starting
  (void)close(kChannel);
  currentSystem().start();
}

void endKeeper(pid_t keeper) {
  (void)kill(keeper, SIGKILL);  // it may have ended, but has not been waited for
  (void)waitForChild(keeper);   // how it ended is known
}

}  // namespace

StartKeeper::StartKeeper() {
  int ends[2] = {-1, -1};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
  channel_ = ScopedFd(ends[0]);
  ScopedFd keepers_end(ends[1]);
  const pid_t keeper = forkChild([&keepers_end] { keep(keepers_end.get()); });
  (void)keepers_end.close();  // nothing was written to it
  if (keeper < 0) return;
  if (receiveByte(channel_.get())) {
    keeper_ = keeper;
  } else {
    endKeeper(keeper);
  }
}

void StartKeeper::outlastThisChild() const { (void)fcntl(channel_.get(), F_SETFD, 0); }

Status StartKeeper::start() {
  if (sendByte(channel_.get()) && receiveByte(channel_.get())) return awaitChild(keeper_);
  endKeeper(keeper_);
  return runChild([] { currentSystem().start(); });
}

}  // namespace tunadm
