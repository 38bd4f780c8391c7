#include "service/SupportBundle.h"

#include <sys/wait.h>

#include <cstdlib>

#include "fundkit/SystemFailure.h"
#include "service/ChildProcess.h"

namespace tunadm {
namespace {

constexpr char kBundleScript[] = "/opt/vrx//bin/vrx-sendbundle.sh";

// How a shell says that it could not run a command.
constexpr int kNotRun = 127;

}  // namespace

Status writeSupportBundle() {
  const int result = std::system(kBundleScript);
  if (result == 0) return Status(kSuccess);
  if (result < 0) return systemFailure(kSystemFailed, "execute", kBundleScript);
  const bool not_run = WIFEXITED(result) && WEXITSTATUS(result) == kNotRun;
  return Status(not_run ? kSystemFailed : kApplicationError)
      .because(exitCause(kBundleScript, shownPath(kBundleScript), outcomeText(outcomeOf(result))));
}

}  // namespace tunadm
