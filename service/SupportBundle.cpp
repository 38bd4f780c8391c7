#include "service/SupportBundle.h"

#include <sys/wait.h>

#include <cstdlib>

namespace tunadm {
namespace {

constexpr char kBundleScript[] = "/opt/vrx//bin/vrx-sendbundle.sh";

// How a shell says that it could not run a command.
constexpr int kNotRun = 127;

}  // namespace

Status writeSupportBundle() {
  const int result = std::system(kBundleScript);
  if (result == 0) return Status(kSuccess);
  const bool not_run = result < 0 || (WIFEXITED(result) && WEXITSTATUS(result) == kNotRun);
  return Status(not_run ? kSystemFailed : kApplicationError);
}

}  // namespace tunadm
