#include "service/ServiceRestart.h"

namespace tunadm {

Status ServiceRestart::stop() {
  start_is_due_ = true;
  return stopService(system_, check_);
}

Status ServiceRestart::finish(Status changed) {
  if (!start_is_due_) return changed;
  Status started = startService(system_, check_);
  return changed.ok() ? started : changed;
}

}  // namespace tunadm
